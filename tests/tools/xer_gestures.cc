#include "tests/tools/xer_gestures.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <vector>

#include "engine/formats/plan_reader.h"
#include "platform/runtime_error.h"
#include "tests/support/gestures/gesture_script.h"
#include "tests/tools/faces.h"
#include "tests/tools/play.h"

namespace nimbrel::gestures {
namespace {

class CommandLineError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw std::runtime_error(path.string() + ": cannot be read");
  }
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Tells which tasks only carry weather data, as the program does.
bool CarriesWeather(const engine::Task& task) {
  const std::string* const role = task.FindUserValue("weather", "tasktype");
  return role != nullptr && !role->empty() && *role != "0";
}

struct Command {
  std::string face = Faces().front().name;
  const platform::Locale* locale = &platform::DefaultLocale();
  std::vector<std::string> files;
};

Command ReadCommandLine(const std::vector<std::string>& arguments) {
  Command command;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool has_value = i + 1 < arguments.size();
    if (arguments[i] == "--face" && has_value) {
      command.face = arguments[++i];
    } else if (arguments[i] == "--locale" && has_value) {
      command.locale = platform::FindLocale(arguments[++i]);
    } else {
      command.files.push_back(arguments[i]);
    }
  }
  const bool is_option = !command.files.empty() && command.files.front().starts_with("--");
  if (command.locale == nullptr || command.files.size() < 2 || is_option) {
    throw CommandLineError("expected [--face plain|win32] [--locale NAME] PLAN.xer SCRIPT...");
  }
  return command;
}

std::unique_ptr<Hands> MakeHands(const std::string& name) {
  const std::vector<Face>& faces = Faces();
  const auto face = std::find_if(faces.begin(), faces.end(),
                                 [&name](const Face& one) { return one.name == name; });
  if (face == faces.end() || face->make_hands == nullptr) {
    throw CommandLineError("the face " + name + " is not built into this program");
  }
  return face->make_hands();
}

void Play(const Command& command, std::ostream& out) {
  const std::unique_ptr<Hands> hands = MakeHands(command.face);
  XerStage stage(command.files.front());
  for (std::size_t i = 1; i < command.files.size(); ++i) {
    stage.Play(command.files[i], *hands, *command.locale, out);
  }
}

}  // namespace

platform::Ref<platform::AutomationObject> XerStage::NoServers::CreateObject(
    const std::string& identifier) {
  throw platform::RuntimeError(platform::kCannotCreateObject,
                               "ActiveX component can't create object: " + identifier);
}

XerStage::XerStage(const std::filesystem::path& xer)
    : plan_(engine::ReadXer(ReadFile(xer), xer.filename().string(), {}).plan) {}

void XerStage::Play(const std::filesystem::path& script, Hands& hands,
                    const platform::Locale& locale, std::ostream& out) {
  PlayText(ReadFile(script), hands, locale, out);
}

void XerStage::PlayText(const std::string& script, Hands& hands, const platform::Locale& locale,
                        std::ostream& out, const std::function<void(toolkit::Desktop&)>& open) {
  const auto host = engine::MakeHost(plan_, {.carries_weather = CarriesWeather, .path = {}});
  PlayOnHost(*host, ParseScript(script, "script"), hands, locale, servers_, out, open);
  plan_ = host->document();
}

int RunXerGestureTool(const std::vector<std::string>& arguments, std::ostream& out,
                      std::ostream& err) {
  const auto complain = [&err](const std::exception& error, int code) {
    err << "nimbrel-gestures: " << error.what() << '\n';
    return code;
  };
  try {
    Play(ReadCommandLine(arguments), out);
    return 0;
  } catch (const engine::FormatError& error) {
    return complain(error, 1);
  } catch (const CommandLineError& error) {
    return complain(error, 2);
  } catch (const ScriptError& error) {
    return complain(error, 2);
  } catch (const std::runtime_error& error) {
    return complain(error, 3);
  }
}

}  // namespace nimbrel::gestures
