#include "dd/hash.h"

#include <chrono>
#include <random>

static constexpr uint64_t each(uint64_t byte) {
  return byte * 0x0101010101010101u;
}

// Mixes a number so that each bit of the result depends on all of its bits.
static constexpr uint64_t scrambled(uint64_t number) {
  number = (number ^ number >> 30) * 0xbf58476d1ce4e5b9u;
  number = (number ^ number >> 27) * 0x94d049bb133111ebu;
  return number ^ number >> 31;
}

static constexpr dd_hash_key key_of(uint64_t one, uint64_t other) {
  return {scrambled(one), scrambled(other) | 1, scrambled(one + other) | 1};
}

#ifdef TAV_HASH_KEY

constinit const dd_hash_key DD_HASH_KEY = key_of(TAV_HASH_KEY, ~uint64_t{TAV_HASH_KEY});

#else

static dd_hash_key draw() {
  // Start values for a system that gives no random numbers: a clock and an address, which differ
  // from run to run.
  auto one = static_cast<uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  auto other = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&one));
  try {
    std::random_device device;
    for (uint64_t* word : {&one, &other}) *word += uint64_t{device()} << 32 | device();
  } catch (...) {
  }
  return key_of(one, other);
}

const dd_hash_key DD_HASH_KEY = draw();

#endif

// Folds eight bytes at once: ASCII capitals become small letters, other bytes stay. Of each byte's
// low seven bits: adding 0x80 - 'A' sets bit 7 from 'A' on, adding 0x80 - 'Z' - 1 sets it above
// 'Z'. Bit 7, shifted down by two, is the 0x20 that makes a capital small.
static uint64_t folded(uint64_t bytes) {
  const uint64_t low = bytes & each(0x7f);
  const uint64_t from_a = low + each(0x80 - 'A');
  const uint64_t behind_z = low + each(0x80 - 'Z' - 1);
  return bytes | (from_a & ~behind_z & ~bytes & each(0x80)) >> 2;
}

template <class Number>
static uint64_t load(const char* text) {
  Number bytes;
  std::memcpy(&bytes, text, sizeof bytes);
  return bytes;
}

static constexpr size_t STEP = sizeof(uint64_t);

static inline uint64_t mixed(uint64_t state, uint64_t bytes) {
  return dd_multiply(state ^ folded(bytes), DD_HASH_KEY.factor);
}

// Loads a text of fewer than eight bytes. Together with the length the
// number is unique to the text.
static uint64_t load_short(const char* text, size_t length) {
  constexpr size_t HALF = STEP / 2;
  if (length >= HALF) return load<uint32_t>(text) << 32 | load<uint32_t>(text + length - HALF);
  uint64_t bytes = 0;
  for (size_t i = 0; i < length; ++i) bytes = bytes << 8 | static_cast<unsigned char>(text[i]);
  return bytes;
}

// Mixes eight bytes at a time into the state, but leaves at least the last byte to finished().
static uint64_t read_on(uint64_t state, const char* text, size_t length, size_t& done) {
  for (; done + STEP < length; done += STEP) state = mixed(state, load<uint64_t>(text + done));
  return state;
}

// Mixes in the last eight bytes (some of them may have been mixed in before) and the length.
[[gnu::always_inline]] static inline uint32_t finished(uint64_t state, const char* text,
                                                       size_t length) {
  const uint64_t last =
      length >= STEP ? load<uint64_t>(text + length - STEP) : load_short(text, length);
  return dd_upper_half(mixed(state + length * DD_HASH_KEY.length_factor, last));
}

uint32_t dd_hash(const char* text, size_t length) {
  size_t done = 0;
  const uint64_t state = read_on(DD_HASH_KEY.start, text, length, done);
  return finished(state, text, length);
}

uint32_t dd_hash_of_beginnings::next(size_t length) {
  state_ = read_on(state_, text_, length, done_);
  return finished(state_, text_, length);
}
