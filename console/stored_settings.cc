#include "console/stored_settings.h"

#include "app/platform/byte_text.h"
#include "app/resources/settings_keys.h"
#include "app/settings/app_settings.h"
#include "console/console_error.h"
#include "console/did_you_mean.h"
#include "console/json_text.h"
#include "console/name_choice.h"
#include "console/terminal_text.h"

namespace kelvaro::console {
namespace {

constexpr std::uint32_t kMostText = RegistryBufferSize - 1;  // bytes; the terminator counts

// What differs between the kinds of values: which texts are allowed, and reading one.
std::string Allowed(bool) { return "0 or 1"; }
std::string Allowed(std::uint32_t) {
  return "a whole number from 0 to " + std::to_string(UINT32_MAX);
}
std::string Allowed(const ByteString&) {
  return "a text of up to " + std::to_string(kMostText) + " bytes";
}

bool Read(const std::string& text, bool* flag) {
  if (text != "0" && text != "1") return false;
  *flag = text == "1";
  return true;
}
bool Read(const std::string& text, std::uint32_t* number) {
  const auto read = platform::ParseWholeNumber(text);
  if (!read || *read > UINT32_MAX) return false;
  *number = static_cast<std::uint32_t>(*read);
  return true;
}
bool Read(const std::string& text, ByteString* bytes) {
  if (text.size() > kMostText) return false;
  *bytes = TextOf(text);
  return true;
}

std::string Plain(std::uint32_t number) { return std::to_string(number); }
std::string Plain(const ByteString& text) { return TerminalText(text); }

std::string Quoted(std::uint32_t number) { return Plain(number); }
std::string Quoted(const ByteString& text) { return "'" + Plain(text) + "'"; }

std::string Json(std::uint32_t number) { return Plain(number); }
std::string Json(const ByteString& text) { return JsonText(text); }

// `work` with the setting's value in `settings`.
template <typename Settings, typename Work>
auto WithValue(const Setting& setting, Settings& settings, const Work& work) {
  return std::visit([&](auto member) { return work(settings.*member); }, setting.member);
}

// The value of a setting that holds now.
struct Holds {
  explicit Holds(const Setting& setting) : setting(setting) {
    RegistryKey key(platform::HKEY_CURRENT_USER, kProductKey, false);
    isSet = setting.Load(&key, &settings);
  }

  const Setting& setting;
  AppSettings settings;  // only that setting counts
  bool isSet;
};

std::string AllowedFor(const Setting& setting) {
  const AppSettings any;
  return WithValue(setting, any, [](const auto& value) { return Allowed(value); });
}

std::string ValueText(const Holds& holds) {
  return WithValue(holds.setting, holds.settings, [](const auto& value) { return Quoted(value); });
}

// All but the closing bracket.
std::string JsonOf(const Holds& holds) {
  const AppSettings byDefault;
  const auto json = [&](const AppSettings& settings) {
    return WithValue(holds.setting, settings, [](const auto& value) { return Json(value); });
  };
  return "{\"name\":" + JsonText(std::string(holds.setting.name)) +
         ",\"value\":" + json(holds.settings) + ",\"set\":" + (holds.isSet ? "true" : "false") +
         ",\"default\":" + json(byDefault) + ",\"allowed\":" + JsonText(AllowedFor(holds.setting)) +
         ",\"means\":" + JsonText(std::string(holds.setting.means));
}

std::string Text(const Holds& holds) {
  const AppSettings byDefault;
  return std::string(holds.setting.name) + " = " + ValueText(holds) +
         (holds.isSet ? "" : " (not set)") + "\n  " + holds.setting.means + ": " +
         AllowedFor(holds.setting) + "; " +
         WithValue(holds.setting, byDefault, [](const auto& value) { return Quoted(value); }) +
         " if not set\n";
}

// By its name, or by a beginning that no other has, in any case of letters. Complains if there is
// none.
const Setting* FindSetting(const std::string& name, Streams streams) {
  const ByteString wanted = TextOf(name);
  const auto length = static_cast<std::int32_t>(wanted.Length());
  const Setting* found = nullptr;
  std::vector<std::string> names;
  std::vector<std::string> meant;
  for (const Setting& setting : Settings()) {
    const ByteString own = TextOf(setting.name);
    if (own.Compare(wanted, true) == 0) return &setting;
    names.emplace_back(setting.name);
    if (length == 0 || own.Left(length).Compare(wanted, true) != 0) continue;
    found = &setting;
    meant.emplace_back(setting.name);
  }
  if (meant.size() == 1) return found;
  if (meant.empty()) {
    Complain(streams.err, "there is no setting '" + name + "'" + MeantInBrackets(name, names) +
                              "; there are " + QuotedList(names));
  } else {
    Complain(streams.err, SeveralNames(name, meant));
  }
  return nullptr;
}

std::string Numbers(const std::vector<std::uint32_t>& numbers) {
  std::string list;
  for (const std::uint32_t number : numbers)
    list += (list.empty() ? "" : ",") + std::to_string(number);
  return list;
}

}  // namespace

int ListSettings(const SettingsOptions& options, Streams streams) {
  for (const Setting& setting : Settings()) {
    const Holds holds(setting);
    streams.out << (options.json ? JsonOf(holds) + "}\n" : Text(holds)) << std::flush;
  }
  return kDone;
}

int ShowSetting(const SettingsOptions& options, Streams streams) {
  const Setting* const setting = FindSetting(options.name, streams);
  if (!setting) return kBad;
  const Holds holds(*setting);
  const std::string value =
      WithValue(*setting, holds.settings, [](const auto& each) { return Plain(each); });
  streams.out << (options.json ? JsonOf(holds) + "}" : value) << std::endl;
  return kDone;
}

int ChangeSetting(const SettingsOptions& options, const std::vector<std::uint32_t>& running,
                  const std::string& file, Streams streams) {
  const Setting* const setting = FindSetting(options.name, streams);
  if (!setting) return kBad;
  AppSettings wanted;
  if (!WithValue(*setting, wanted, [&](auto& value) { return Read(options.value, &value); })) {
    return Complain(streams.err, std::string("'") + setting->name + "' can't be '" + options.value +
                                     "': it is " + AllowedFor(*setting));
  }
  if (!running.empty() && setting->saved != Setting::Saved::Never) {
    return Complain(streams.err, "Kelvaro runs (process " + Numbers(running) + ") and writes '" +
                                     setting->name + "' itself when it ends; end it first");
  }
  // As the window's start would do, which does it only as long as nothing is stored.
  AppSettings::Migrate();
  RegistryKey key(platform::HKEY_CURRENT_USER, kProductKey, true);
  if (!setting->Store(&key, wanted)) {
    return Complain(streams.err, file + ": the settings can't be written");
  }
  const Holds holds(*setting);
  if (options.json) {
    streams.out << JsonOf(holds) << ",\"startAgain\":[" << Numbers(running) << "]}" << std::endl;
  } else {
    streams.out << setting->name << " = " << ValueText(holds) << ", from the window's next start on"
                << std::endl;
    if (!running.empty()) {
      streams.out << "Kelvaro runs (process " << Numbers(running)
                  << "): end it and start it again for this to count" << std::endl;
    }
  }
  return kDone;
}

}  // namespace kelvaro::console
