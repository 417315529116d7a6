#include "tests/support/guarded_row.h"

#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>

namespace host {
namespace {

constexpr size_t kPage = 4096;
/// More than a kernel treats at a time.
constexpr size_t kGuarded = 320;

sigjmp_buf beforeFunction;
const void* faulty = nullptr;

void onFault(int /*signal*/, siginfo_t* info, void* /*context*/) {
  faulty = info->si_addr;
  siglongjmp(beforeFunction, 1);
}

}  // namespace

GuardedRow::GuardedRow(size_t capacity) : capacity_((capacity + kPage - 1) / kPage * kPage) {
  const size_t size = capacity_ + 2 * kPage;
  void* mapping = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) abort();
  mapping_ = static_cast<uint8_t*>(mapping);
  if (mprotect(mapping_ + kPage, capacity_, PROT_READ | PROT_WRITE) != 0) abort();
}

GuardedRow::~GuardedRow() { munmap(mapping_, capacity_ + 2 * kPage); }

void GuardedRow::place(size_t size, uint32_t place, size_t step, uint32_t seed) {
  const size_t off = place % 4 * step;
  if (off + size > capacity_) abort();
  const size_t before = place < 4 ? capacity_ - off - size : off;
  begin_ = mapping_ + kPage + before;
  front_ = std::min(kGuarded, before);
  expected_.resize(front_ + size + std::min(kGuarded, capacity_ - before - size));
  std::ranges::generate(expected_, [&] { return static_cast<uint8_t>(seed += 37); });
  std::ranges::copy(expected_, begin_ - front_);
}

testing::AssertionResult GuardedRow::isAsExpected() const {
  const uint8_t* actual = begin_ - front_;
  const auto [there, wanted] = std::mismatch(actual, actual + expected_.size(), expected_.data());
  if (there == actual + expected_.size()) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "byte " << there - begin_ << " is " << int{*there} << " instead of " << int{*wanted};
}

std::optional<ptrdiff_t> GuardedRow::distanceTo(const void* address) const {
  const auto* byte = static_cast<const uint8_t*>(address);
  if (byte < mapping_ || byte >= mapping_ + capacity_ + 2 * kPage) return std::nullopt;
  return byte - begin_;
}

std::optional<const void*> faultIn(const std::function<void()>& function) {
  struct sigaction action {};
  struct sigaction before {};
  action.sa_sigaction = onFault;
  action.sa_flags = SA_SIGINFO | SA_NODEFER;
  sigaction(SIGSEGV, &action, &before);
  const bool isStopped = sigsetjmp(beforeFunction, 0) != 0;
  if (!isStopped) function();
  sigaction(SIGSEGV, &before, nullptr);
  return isStopped ? std::optional(faulty) : std::nullopt;
}

}  // namespace host
