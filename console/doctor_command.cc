// kelvaroctl doctor: whether Kelvaro can work on this machine.

#include "console/commands.h"
#include "console/console_error.h"
#include "console/diagnosis.h"
#include "console/machine_facts.h"

namespace kelvaro::console {

int DoctorCommand(const DoctorOptions& options, Streams streams) {
  const std::vector<Remark> remarks = Diagnose(LookAtMachine());
  for (const Remark& remark : remarks) {
    streams.out << (options.json ? RemarkJson(remark) + "\n" : RemarkText(remark, streams.terminal))
                << std::flush;
  }
  return KeepsFromWorking(remarks) ? kBad : kDone;
}

}  // namespace kelvaro::console
