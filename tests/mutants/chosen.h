#pragma once

// What `mutate` writes into a source in place of what it changes. All changes of a folder are in
// one program then, numbered, and the environment chooses which of them is made (KELVARO_MUTANT,
// see chosen.cc); an operator keeps its precedence, as it stands on both sides of what stands for
// it: `a == mutants::Swap<7>() == b`.

#include <type_traits>
#include <utility>

namespace mutants {

inline constexpr int kMost = 20000;
extern int chosen;           // 0: none
extern bool reached[kMost];  // by its number: a test has come by

/** Whether this change is made. A constant is never changed: it has its value before anybody can
 *  choose. */
template <int number>
constexpr bool On() {
  if (std::is_constant_evaluated()) return false;
  reached[number] = true;
  return chosen == number;
}

template <int number, typename T>
constexpr T More(T value) {
  return On<number>() ? static_cast<T>(value + 1) : value;
}

template <int number>
constexpr bool Other(bool value) {
  return value != On<number>();
}

// The same in a table, which then gets its values when the program starts.
template <int number, typename T>
T MoreInTable(T value) {
  return More<number>(value);
}
template <int number>
bool OtherInTable(bool value) {
  return Other<number>(value);
}

template <int number>
struct Not {};
template <int number, typename T>
constexpr bool operator->*(Not<number>, T&& value) {
  return static_cast<bool>(value) == On<number>();
}

template <int number>
struct Up {};
template <int number, typename T>
constexpr T& operator->*(Up<number>, T& value) {
  return On<number>() ? --value : ++value;
}
template <int number>
struct Down {};
template <int number, typename T>
constexpr T& operator->*(Down<number>, T& value) {
  return On<number>() ? ++value : --value;
}

template <int number>
struct Swap {};
template <int number, typename T>
struct Left {
  T&& value;
};
template <int number, typename T>
struct Right {
  T&& value;
};

// Where the operator that takes the place can't be had, nothing is changed and nothing counts as
// reached.
#define KELVARO_SWAP(was, now)                                                       \
  template <typename L, int number>                                                  \
  constexpr Left<number, L> operator was(L&& left, Swap<number>) {                   \
    return {std::forward<L>(left)};                                                  \
  }                                                                                  \
  template <int number, typename L, typename R>                                      \
  constexpr auto operator was(Left<number, L> left, R&& right)                       \
      ->decltype(std::forward<L>(left.value) was std::forward<R>(right)) {           \
    using Result = decltype(std::forward<L>(left.value) was std::forward<R>(right)); \
    if constexpr (requires { static_cast<Result>(left.value now right); }) {         \
      if (On<number>()) return static_cast<Result>(left.value now right);            \
    }                                                                                \
    return std::forward<L>(left.value) was std::forward<R>(right);                   \
  }
KELVARO_SWAP(==, !=)
KELVARO_SWAP(!=, ==)
KELVARO_SWAP(<, <=)
KELVARO_SWAP(<=, <)
KELVARO_SWAP(>, >=)
KELVARO_SWAP(>=, >)
KELVARO_SWAP(+, -)
KELVARO_SWAP(-, +)
KELVARO_SWAP(*, /)
KELVARO_SWAP(/, *)
KELVARO_SWAP(%, *)
KELVARO_SWAP(&, |)
KELVARO_SWAP(|, &)
KELVARO_SWAP(<<, >>)
KELVARO_SWAP(>>, <<)
#undef KELVARO_SWAP

// These bind from the right.
#define KELVARO_SWAP(was, now)                                           \
  template <int number, typename R>                                      \
  constexpr Right<number, R> operator was(Swap<number>, R&& right) {     \
    return {std::forward<R>(right)};                                     \
  }                                                                      \
  template <typename L, int number, typename R>                          \
  constexpr auto operator was(L&& left, Right<number, R> right)          \
      ->decltype(left was std::forward<R>(right.value)) {                \
    if constexpr (requires { left now std::forward<R>(right.value); }) { \
      if (On<number>()) return left now std::forward<R>(right.value);    \
    }                                                                    \
    return left was std::forward<R>(right.value);                        \
  }
KELVARO_SWAP(+=, -=)
KELVARO_SWAP(-=, +=)
KELVARO_SWAP(|=, &=)
KELVARO_SWAP(&=, |=)
#undef KELVARO_SWAP

}  // namespace mutants
