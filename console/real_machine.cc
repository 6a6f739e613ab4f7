#include "console/real_machine.h"
namespace kelvaro::console {
struct RealMachine::Parts {};
RealMachine::RealMachine() {}
RealMachine::~RealMachine() {}
void RealMachine::OpenDevices() {}
void RealMachine::PlayRecording(const platform::simulation::Recording&) {}
bool RealMachine::OpenOutput(EventPrinter*, std::string*) { return false; }
void RealMachine::StartOfTime() {}
int RealMachine::EndOfOutput(Streams) { return 0; }
}  // namespace kelvaro::console
