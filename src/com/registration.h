#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/win/win_api.h"

namespace nimbrel::com {

/// One class as the registry describes it.
struct ClassEntry {
  CLSID id;
  std::wstring identifier;  ///< programmatic: "Nimbrel.clsNimbrel"
  std::wstring description;
};

/// A DLL or a program with classes for others.
struct ServerEntry {
  std::wstring path;  ///< of the file, which has the type library as its first resource
  bool in_process = true;
  GUID library = {};  ///< all zeros: it has none
  WORD library_major = 1;
  WORD library_minor = 0;
  std::vector<ClassEntry> classes;
};

/// For whom something is registered.
enum class Scope { kMachine, kUser };

/// Enter the classes and the type library in the registry, and take them out. What is already as it
/// should be is no failure. Entering takes a programmatic identifier from the class that it led to
/// before; taking out removes it if it still leads to the entry's own class and that class is not
/// registered in the other width, and brings back nothing of what it was before. Of the type
/// library the path for this width goes, and with the last path the rest. Taking out what is there
/// but may not be removed gives E_ACCESSDENIED.
HRESULT RegisterServer(const ServerEntry& server, Scope scope);
HRESULT UnregisterServer(const ServerEntry& server, Scope scope);

/// `attempt` for the machine, and for the user alone where rights are missing for that.
HRESULT ForMachineOrUser(const std::function<HRESULT(Scope)>& attempt);

/// `attempt` for the user and then for the machine, whatever becomes of the first. Gives the first
/// failure.
HRESULT ForUserAndMachine(const std::function<HRESULT(Scope)>& attempt);

/// The file of the DLL or program that this code is in.
std::wstring OwnPath();

}  // namespace nimbrel::com
