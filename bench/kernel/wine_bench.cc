// kelvaroctl.exe by Wine beside kelvaroctl on the same machine: the time from a pad's event to the
// key in a program that waits for it, and processor time with the pad still and with the pointer
// moving. What Wine's own processes use comes apart: on Windows they are the system.
//
// Made for a machine whose clock counts instructions (tests/kernel/with_wine).

#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>

#include "bench/kernel/measure.h"
#include "tests/kernel/wait.h"
#include "tests/kernel/wine.h"

namespace kelvaro::kernel {
namespace {

constexpr int kPresses = 300;
constexpr int kIntervals[] = {1, 5};  // ms

// The keys that a window of Wine's gets.
class WindowKeys final : public platform::KeyArrivals {
 public:
  explicit WindowKeys(const Wine& wine) : typed(wine) {}

  std::optional<Key> Next(bool down, std::chrono::milliseconds limit) override {
    std::optional<Key> key;
    tests::Eventually(
        [&] {
          for (const TypedKeys::Line& line : typed.Take())
            if ((line.text.rfind("down", 0) == 0) == down && !key) key = {down, line.us, line.us};
          return key.has_value();
        },
        limit, 2ms);
    return key;
  }
  void Forget() override { typed.Take(); }

 private:
  TypedKeys typed;
};

class WineProgram {
 public:
  // Comes back once it polls.
  WineProgram(const Wine& wine, const std::string& profile) {
    const auto listed = [&wine] { return !wine.RunKelvaroctl({"devices", "--json"}).out.empty(); };
    if (!tests::Eventually(listed, kWinePatience)) Fail("Wine doesn't list the pad");
    child = wine.StartKelvaroctl({"run", WriteFile(profile)});
    if (!tests::Eventually([this] { return child->Err().find("Running") != std::string::npos; },
                           kWinePatience))
      Fail("kelvaroctl.exe doesn't start: " + child->Log());
    WaitMs(500);
  }
  ~WineProgram() {
    child->Signal(SIGINT);
    if (child->WaitForEnd(kWinePatience) != 0) Fail("kelvaroctl.exe doesn't end: " + child->Log());
  }

  pid_t Id() const { return child->Id(); }

 private:
  std::unique_ptr<Child> child;
};

std::string At(const std::string& what, int intervalMs) {
  return what + ", " + std::to_string(intervalMs) + " ms";
}

void MeasureLinux(int intervalMs) {
  UinputPad pad(BenchPad());
  {
    Program program(pad, Profile(intervalMs));
    PrintTimes(At("Linux, pad to key", intervalMs),
               TimesOf(pad, program.Keyboard(), intervalMs * 1000, kPresses).seen);
    PrintStillUse(At("Linux, pad still", intervalMs), {program.Id()});
  }
  Program program(pad, Profile(intervalMs, kMouseOfStick));
  Circle circle(pad);
  PrintUse(At("Linux, stick at 250 Hz, pointer moving", intervalMs), {program.Id()},
           [&] { circle.Play(kSeconds); });
}

// What Wine's own processes use, and then the program.
void PrintUses(const Wine& wine, const std::string& what, const WineProgram& program,
               const std::function<void()>& meanwhile) {
  const std::vector<pid_t> shared = wine.Shared();
  PrintUse(what, {program.Id()},
           [&] { PrintUse("Wine's own processes meanwhile", shared, meanwhile); });
}

void MeasureWine(const Wine& wine, int intervalMs) {
  UinputPad pad(BenchPad());
  {
    WindowKeys keys(wine);
    const WineProgram program(wine, Profile(intervalMs));
    PrintTimes(At("Wine, pad to key", intervalMs),
               TimesOf(pad, keys, intervalMs * 1000, kPresses).seen);
    PrintUses(wine, At("Wine, pad still", intervalMs), program, [] { WaitMs(kSeconds * 1000); });
  }
  const WineProgram program(wine, Profile(intervalMs, kMouseOfStick));
  Circle circle(pad);
  PrintUses(wine, At("Wine, stick at 250 Hz, pointer moving", intervalMs), program,
            [&] { circle.Play(kSeconds); });
}

}  // namespace
}  // namespace kelvaro::kernel

int main() {
  using namespace kelvaro::kernel;
  std::printf("%-52s %7s %7s %7s %7s\n", "microseconds", "least", "median", "95 %", "most");
  for (const int intervalMs : kIntervals) MeasureLinux(intervalMs);
  const Wine wine;
  for (const int intervalMs : kIntervals) MeasureWine(wine, intervalMs);
  return 0;
}
