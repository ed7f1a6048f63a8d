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
/// should be is no failure, and nothing of what an entry has not written is removed.
HRESULT RegisterServer(const ServerEntry& server, Scope scope);
HRESULT UnregisterServer(const ServerEntry& server, Scope scope);

/// `attempt` for the machine, and for the user alone where rights are missing for that.
HRESULT ForMachineOrUser(const std::function<HRESULT(Scope)>& attempt);

/// The file of the DLL or program that this code is in.
std::wstring OwnPath();

}  // namespace nimbrel::com
