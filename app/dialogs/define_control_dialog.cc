#include "app/dialogs/define_control_dialog.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "app/dialogs/help.h"
#include "app/dialogs/number_field.h"
#include "app/dialogs/small_dialogs.h"
#include "app/platform/input.h"
#include "app/resources/control_ids.h"
#include "app/resources/resources.h"
#include "app/resources/settings_keys.h"
#include "engine/input_text.h"
#include "foundation/registry_key.h"
#include "keys/key_action.h"

namespace kelvaro {
namespace {

using namespace define_control;

constexpr std::uint32_t kDefaultDelay = 500;  // ms
constexpr std::uint32_t kDefaultSpeed = 50;   // ms

// The place in the help page that explains a control. The page's start explains the others.
constexpr struct {
  std::uint32_t id;
  const char* place;
} kHelpPlaces[] = {
    {kTriggerText, "#trigger"}, {kDetectTrigger, "#trigger"}, {kToggleMouseCheck, "#mouse"},
    {kKeysText, "#keys"},       {kSpecialKeyList, "#keys"},   {kHoldAllKeys, "#hold"},
    {kHoldValue, "#timings"},   {kPauseValue, "#timings"},    {kRepeatCheck, "#repeat"},
    {kDelayValue, "#repeat"},   {kSpeedValue, "#repeat"},     {kDefaults, "#repeat"},
};

constexpr char kNoDescriptionText[] = "You must enter a description for this event";
constexpr char kNoDescriptionTitle[] = "Missing Description";
constexpr char kSmartCheckText[] =
    "The keys you have entered match a special key token, but are missing the angle brackets.\n"
    "Did you mean to type \"";
constexpr char kSmartCheckEnd[] = "\"?";
constexpr char kSmartCheckTitle[] = "Smart Check";
constexpr char kKeyErrorTitle[] = "Key Parsing Error";
constexpr char kBadKeyText[] =
    "There is an error in the key sequence. The '<' character must\n"
    "be followed by a recognized special key name and a '>'.\n"
    "To produce the '<' character itself, enter two of them together.\n"
    "\n"
    "The cursor will be placed at the start of the problem.";
constexpr char kDuplicateKeyText[] =
    "More than one occurrence of the same key\n"
    "is not allowed when holding them all down.\n"
    "\n"
    "The cursor will be placed at the start of the problem.";
constexpr char kNoMemoryText[] = "Out of Memory";
constexpr char kNoMemoryTitle[] = "Critical Error";

constexpr std::uint8_t kHomeKey = 0x24;
constexpr std::uint8_t kHomeScan = 0xC7;
constexpr std::uint8_t kRightKey = 0x27;
constexpr std::uint8_t kRightScan = 0xCD;

// The name of the machine's value that offers a Control on release is the two, byte by byte XORed,
// so that nobody comes across it in the program. docs/settings.md tells it to those who ask.
constexpr unsigned char kReleaseName1[] = {0xD2, 0xA6, 0xE5, 0x8C, 0x92, 0x98, 0xDD, 0x8E,
                                           0xB6, 0x89, 0x96, 0xEF, 0xEB, 0x91, 0xBD, 0x97,
                                           0xEC, 0x8F, 0x9F, 0xB9, 0x8F, 0xE5};
constexpr unsigned char kReleaseName2[] = {0x81, 0xCE, 0x8A, 0xFB, 0xB2, 0xC8, 0xAF, 0xEB,
                                           0xC5, 0xFA, 0xB6, 0xAE, 0x85, 0xF5, 0x9D, 0xC5,
                                           0x89, 0xE3, 0xFA, 0xD8, 0xFC, 0x80};

bool ReleaseIsOffered() {
  std::string name;
  std::transform(std::begin(kReleaseName1), std::end(kReleaseName1), std::begin(kReleaseName2),
                 std::back_inserter(name), std::bit_xor<char>());
  std::uint32_t value{};
  RegistryKey key(platform::HKEY_LOCAL_MACHINE, kProductKey, false);
  return key.GetDword(nullptr, name.c_str(), &value) && value != 0;
}

void PressExtendedKey(std::uint8_t vk, std::uint8_t scan) {
  platform::input().keybd_event(vk, scan, platform::KEYEVENTF_EXTENDEDKEY, 0);
  platform::input().keybd_event(vk, scan,
                                platform::KEYEVENTF_EXTENDEDKEY | platform::KEYEVENTF_KEYUP, 0);
}

}  // namespace

DefineControlDialog::DefineControlDialog() : ResizableDialog(resources::kDefineControl) {
  // `scratch` never owns actions, however the dialog ends: old ones belong to the Control that it
  // copies, new ones to the code that takes `scratch` over.
  scratch.Borrow({});
}

void DefineControlDialog::ShowDetectedTrigger(const DeviceManager& device,
                                              const DeviceSnapshot& snapshot) {
  LockGuard guard(triggerLock);
  // Once the dialog has ended its window is gone, and scratch is its user's.
  if (!dialogOpen || !detectTrigger) return;
  ByteString text;
  CaptureTrigger(device.axisMax, snapshot, &text, &scratch);
  platform::controls().SetDlgItemTextA(window, kTriggerText, Bytes(text));
}

void DefineControlDialog::OnInit() {
  ResizableDialog::OnInit();
  detectTrigger = false;
  Check(scratch.activateOnPress == 1 ? kPress : kRelease, true);

  DeclareLayout();
  RestorePlacement(kProductKey, kControlWindowSubkey);
  if (ReleaseIsOffered()) {
    for (const std::uint32_t id : {kOnLabel, kPress, kRelease}) {
      platform::controls().ShowControl(window, id, platform::SW_SHOW);
    }
  }

  TakeScratch();
  EnableFields();

  SetDialogOpen(true);
  platform::controls().CreateToolTip(window);
  LimitTips(kTipWidth);
  platform::controls().EnableToolTips(window);
  icon = platform::desktop().LoadIconA(resources::kIcon);
  platform::desktop().SetWindowIcon(window, icon, false);
}

void DefineControlDialog::OnDestroy() {
  ResizableDialog::OnDestroy();
  platform::desktop().DestroyIcon(icon);
}

void DefineControlDialog::DeclareLayout() {
  using namespace layout_flag;
  maxTrackHeight = minTrackHeight;
  for (const std::uint32_t id :
       {kDescriptionText, kTriggerFrame, kTriggerText, kKeysText, kSpecialKeyList}) {
    AddNode(0, id, kGrowAcross);
  }
  AddNode(0, kDetectTrigger, kMoveAcross);
  AddNode(0, kDetectLabel, kMoveAcross);
  AddNode(0, platform::IDOK, kMoveAcross | kMoveDown);
  AddNode(0, platform::IDCANCEL, kMoveAcross | kMoveDown);
  AddNode(0, kHelp, kMoveDown);
  MeasurePages();
}

void DefineControlDialog::TakeScratch() {
  descriptionText = scratch.description;
  ByteString triggerText;
  TriggerText(scratch, &triggerText);
  SetText(kTriggerText, triggerText);

  delayValue = scratch.repeatDelay;
  speedValue = scratch.repeatSpeed;
  holdValue = scratch.keyHoldTime;
  pauseValue = scratch.keyReleasePause;
  repeatCheck = scratch.repeatEnabled == 1;
  toggleMouseCheck = scratch.toggleMouseControls != 0;

  keysText.Empty();
  for (const InputAction* each : scratch.actions) {
    if (each->actionType != InputAction::kKeyAction) continue;
    const auto& action = static_cast<const KeyAction&>(*each);
    keysText.Append(action.FormatKeys());
    if (action.HoldsAllKeys()) Check(kHoldAllKeys, true);
  }
  scratch.ClearActions();
  ShowFields();
}

void DefineControlDialog::EnableFields() {
  if (!Checked(kPress)) {
    Check(kRepeatCheck, false);
    Check(kHoldAllKeys, false);
  }
  OnRepeatBox();
  // Kept: a Control on release can be made to repeat, too.
  OnHoldAllBox();
}

void DefineControlDialog::OnPressOrRelease(bool press) {
  if (Checked(press ? kRelease : kPress)) return;
  for (const std::uint32_t id : {kRepeatCheck, kDelayValue, kSpeedValue, kHoldAllKeys}) {
    Enable(id, press);
  }
  if (press) return;
  Check(kRepeatCheck, false);
  Check(kHoldAllKeys, false);
}

void DefineControlDialog::OnRepeatBox() {
  const bool repeats = Checked(kRepeatCheck);
  Enable(kHoldAllKeys, !repeats);
  if (repeats) Check(kHoldAllKeys, false);
}

void DefineControlDialog::OnHoldAllBox() {
  const bool holdAll = Checked(kHoldAllKeys);
  for (const std::uint32_t id : {kRepeatCheck, kDelayValue, kSpeedValue, kHoldValue, kPauseValue}) {
    Enable(id, !holdAll);
  }
  if (holdAll) Check(kRepeatCheck, false);
}

void DefineControlDialog::OnDefaults() {
  if (!ReadFields()) return;
  delayValue = kDefaultDelay;
  speedValue = kDefaultSpeed;
  ShowFields();
}

void DefineControlDialog::OnHelpKey() {
  if (!helpAvailable) return;
  const std::uint32_t focused = platform::controls().GetControlFocus(window);
  std::string topic = kControlsTopic;
  for (const auto& row : kHelpPlaces)
    if (row.id == focused) topic += row.place;
  ShowHelpTopic(topic.c_str());
}

void DefineControlDialog::OnNotice(std::uint32_t id, platform::Notice notice, std::int32_t value) {
  if (notice == platform::Notice::KeyDown && value == kF1) return OnHelpKey();
  if (notice != platform::Notice::Clicked) return;
  switch (id) {
    case kPress:
    case kRelease:
      return OnPressOrRelease(id == kPress);
    case kRepeatCheck:
      return OnRepeatBox();
    case kHoldAllKeys:
      return OnHoldAllBox();
    case kDetectTrigger:
      detectTrigger = Checked(kDetectTrigger);
      return;
    case kDefaults:
      return OnDefaults();
    case kHelp:
      if (helpAvailable) ShowHelpTopic(kControlsTopic);
      return;
    default:
      ResizableDialog::OnNotice(id, notice, value);
  }
}

std::string DefineControlDialog::OnToolTip(std::uint32_t id) {
  tipText = resources::String(id);
  return Bytes(tipText);
}

void DefineControlDialog::OnOK() {
  if (!ReadFields()) return;
  if (descriptionText.IsEmpty()) {
    Box(kNoDescriptionText, kNoDescriptionTitle, platform::MB_OK);
    platform::controls().SetControlFocus(window, kDescriptionText);
    return;
  }

  const bool onPress = Checked(kPress);
  {
    LockGuard guard(triggerLock);
    scratch.activateOnPress = onPress ? 1 : 0;
  }
  scratch.description = descriptionText;
  if (!TakeKeys(onPress)) return;

  scratch.repeatEnabled = repeatCheck ? 1 : 0;
  scratch.repeatDelay = delayValue;
  scratch.repeatSpeed = speedValue;
  scratch.keyHoldTime = holdValue;
  scratch.keyReleasePause = pauseValue;
  scratch.toggleMouseControls = toggleMouseCheck ? 1 : 0;
  SetDialogOpen(false);
  EndDialog(platform::IDOK);
}

void DefineControlDialog::OnCancel() {
  SetDialogOpen(false);
  EndDialog(platform::IDCANCEL);
}

void DefineControlDialog::ShowFields() {
  const auto show = [this](std::uint32_t id, std::uint32_t value) {
    SetText(id, ToDecimal(value, false, 0));
  };
  SetText(kDescriptionText, descriptionText);
  SetText(kKeysText, keysText);
  Check(kRepeatCheck, repeatCheck);
  show(kDelayValue, delayValue);
  show(kSpeedValue, speedValue);
  Check(kToggleMouseCheck, toggleMouseCheck);
  show(kHoldValue, holdValue);
  show(kPauseValue, pauseValue);
}

bool DefineControlDialog::ReadFields() {
  descriptionText = Text(kDescriptionText);
  keysText = Text(kKeysText);
  repeatCheck = Checked(kRepeatCheck);
  if (!ReadNumber(kDelayValue, &delayValue) || !ReadNumber(kSpeedValue, &speedValue)) return false;
  toggleMouseCheck = Checked(kToggleMouseCheck);
  return ReadNumber(kHoldValue, &holdValue) && ReadNumber(kPauseValue, &pauseValue);
}

bool DefineControlDialog::ReadNumber(std::uint32_t id, std::uint32_t* value) {
  const auto number = ParseNumber(Text(id));
  if (number && *number <= UINT32_MAX) {
    *value = static_cast<std::uint32_t>(*number);
    return true;
  }
  Box(number ? kTooLargeText : kNotANumberText, kNotANumberCaption, platform::MB_ICONEXCLAMATION);
  platform::controls().SetControlFocus(window, id);
  return false;
}

bool DefineControlDialog::TakeKeys(bool onPress) {
  if (keysText.IsEmpty()) return true;

  std::unique_ptr<KeyAction> action(new (std::nothrow) KeyAction);
  bool duplicateKey{};
  std::optional<int> result;
  if (action) {
    if (onPress && Checked(kHoldAllKeys)) action->actionFlags |= KeyAction::HoldAllKeys;
    result = action->ParseKeys(KeysMeant(), &duplicateKey, shiftReminder);
  }
  if (result == KeyAction::kParsedRemind) {
    if (!ConfirmUppercase()) return false;
    result = KeyAction::kParsed;
  }
  if (result == KeyAction::kParsed && scratch.actions.AddTail(action.get())) {
    // Borrowed: the code that takes scratch over deletes it.
    static_cast<void>(action.release());
    return true;
  }

  action.reset();
  if (result >= 0) {
    ShowKeyError(duplicateKey, static_cast<std::uint32_t>(*result));
  } else {
    Box(kNoMemoryText, kNoMemoryTitle, platform::MB_ICONEXCLAMATION);
  }
  return false;
}

ByteString DefineControlDialog::KeysMeant() const {
  const ByteString token = smartCheck ? KeyAction::SmartCheck(keysText) : ByteString();
  if (token.IsEmpty()) return keysText;
  const ByteString question = ByteString(kSmartCheckText).Concat(token).Concat(kSmartCheckEnd);
  return Box(question, kSmartCheckTitle, platform::MB_YESNO) == platform::IDYES ? token : keysText;
}

bool DefineControlDialog::ConfirmUppercase() {
  ShiftKeyRequiredDialog question;
  const bool yes = question.DoModal(window) == platform::IDOK;
  shiftReminder = !question.dontShowAgain;
  return yes;
}

void DefineControlDialog::ShowKeyError(bool duplicateKey, std::uint32_t offset) {
  Box(duplicateKey ? kDuplicateKeyText : kBadKeyText, kKeyErrorTitle, platform::MB_OK);
  platform::controls().SetControlFocus(window, kKeysText);
  // The system's focus gets these keys, and it need not be on this field. If they arrive here, they
  // lead to the same place.
  platform::controls().SetCaret(window, kKeysText, offset);
  PressExtendedKey(kHomeKey, kHomeScan);
  for (std::uint32_t i = 0; i < offset; ++i) PressExtendedKey(kRightKey, kRightScan);
}

void DefineControlDialog::SetDialogOpen(bool open) {
  LockGuard guard(triggerLock);
  dialogOpen = open;
}

}  // namespace kelvaro
