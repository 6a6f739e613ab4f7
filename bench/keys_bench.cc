// What it costs to read and print key texts: one as long as a user would never type, and how the
// cost grows with the length.
#include <benchmark/benchmark.h>

#include <cstdint>

#include "keys/key_action.h"

namespace kelvaro {
namespace {

// Letters, both cases, punctuation, tokens, merged modifiers, literal brackets and pauses.
ByteString KeyText(std::int64_t length) {
  static const char kPattern[] = "aB<Ctrl>c<LShift><Del>!x<<<P:500>7<NPEnter> q<RAlt><F12>.";
  ByteString text;
  while (text.Length() + sizeof kPattern - 1 <= static_cast<std::uint64_t>(length)) {
    text.Append(kPattern);
  }
  while (text.Length() < static_cast<std::uint64_t>(length)) text.AppendChar('z');
  return text;
}

void ParseText(benchmark::State& state) {
  const ByteString text = KeyText(state.range(0));
  for (auto _ : state) {
    KeyAction action;
    const int result = action.ParseKeys(text);
    if (result != KeyAction::kParsed) state.SkipWithError("the text doesn't parse");
    benchmark::DoNotOptimize(action.steps.count);
  }
  state.SetBytesProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(ParseText)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity(benchmark::oN);

void FormatText(benchmark::State& state) {
  KeyAction action;
  if (action.ParseKeys(KeyText(state.range(0))) != KeyAction::kParsed) {
    state.SkipWithError("the text doesn't parse");
  }
  for (auto _ : state) benchmark::DoNotOptimize(action.FormatKeys());
  state.SetBytesProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(FormatText)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity(benchmark::oN);

}  // namespace
}  // namespace kelvaro
