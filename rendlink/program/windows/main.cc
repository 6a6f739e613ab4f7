#include <optional>
#include <sstream>
#include <string>

#include "rendlink/rendlink_dialog.h"

// Behind what has the seam's names.
#include "app/platform/windows/ui/windows_ui.h"
#include "app/platform/windows/windows_platform.h"
#include "rendlink/command_line.h"
#include "rendlink/program/windows/output.h"
#include "rendlink/program/windows/windows_carrier.h"
#include "rendlink/program/windows/windows_session.h"

namespace kelvaro::rendlink {
namespace {

int RunWithoutWindow(const Words& words, Session& session, Streams streams) {
  if (words.size() == 3 && words[0] == "--carry") {
    int status = kFailed;
    if (Carry(words[1], words[2], &status)) return status;
    return Complain(streams.err,
                    "--carry is for Rendlink's own use, and nobody waits at " + words[1], kFailed);
  }
  Options options;
  if (const std::optional<int> status = ReadOptions(words, &options, streams)) return *status;
  // With the program's own name.
  WindowsCarrier carrier(platform::shell().GetCommandLineA('\0'), words.size() + 1, streams.err);
  return RunOptions(options, session, carrier, streams);
}

int Run(const Words& words) {
  platform::WindowsPlatform system;
  platform::ui::WindowsUi ui;
  platform::Platform groups = system.Groups();
  ui.AddTo(&groups);
  const platform::InstalledPlatform installed(groups);
  WindowsSession session;
  if (words.empty()) return RendlinkDialog(session).DoModal(platform::kNoWindow) == -1 ? 1 : 0;
  std::ostringstream out;
  std::ostringstream err;
  const int status = RunWithoutWindow(words, session, {out, err});
  Say(out.str(), err.str());
  return status;
}

}  // namespace
}  // namespace kelvaro::rendlink

int main(int argc, char** argv) { return kelvaro::rendlink::Run({argv + 1, argv + argc}); }
