// The window of Rendlink on a person's desktop.
#pragma once

namespace kelvaro::rendlink {

// The exit status.
int RunDialogOnDesktop(int& argc, char** argv);

}  // namespace kelvaro::rendlink
