// A game that notes how it was started, in the file that the variable KELVARO_GAME_NOTES names: its
// line, its folder, what its input holds. It says a word on its output, waits for the file
// KELVARO_GAME_WAITS, where one is named, and ends with the status KELVARO_GAME_STATUS.
#include <stdlib.h>

#include <chrono>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <thread>

// Last.
#include <windows.h>

namespace {

std::string Variable(const char* name) {
  const char* const value = getenv(name);
  return value ? value : "";
}

}  // namespace

int main() {
  using namespace std::chrono_literals;
  std::cout << "to the screen" << std::endl;
  const std::string notes = Variable("KELVARO_GAME_NOTES");
  char folder[1024] = "";
  GetCurrentDirectoryA(sizeof folder, folder);
  std::string input;
  DWORD mode = 0;
  // A console's would wait for a person.
  if (!GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode))
    input.assign(std::istreambuf_iterator<char>(std::cin), {});
  std::ofstream(notes + ".new", std::ios::binary) << GetCommandLineA() << "\n"
                                                  << folder << "\n"
                                                  << input << "\n";
  MoveFileExA((notes + ".new").c_str(), notes.c_str(), MOVEFILE_REPLACE_EXISTING);
  const std::string flag = Variable("KELVARO_GAME_WAITS");
  while (!flag.empty() && GetFileAttributesA(flag.c_str()) == INVALID_FILE_ATTRIBUTES)
    std::this_thread::sleep_for(20ms);
  return atoi(Variable("KELVARO_GAME_STATUS").c_str());
}
