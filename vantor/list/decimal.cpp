#include "vantor/guard.h"
#include "vantor/list/value.h"

using namespace vantor;

static const char* skip_digits(const char* text) {
  while (*text >= '0' && *text <= '9') ++text;
  return text;
}

// [sign] digits [. digits], with a digit on at least one side of the point.
static bool is_decimal(const char* text) {
  if (*text == '+' || *text == '-') ++text;
  const char* point = skip_digits(text);
  auto digits = point - text;
  const char* end = point;
  if (*point == '.') {
    end = skip_digits(point + 1);
    digits += end - (point + 1);
  }
  return digits > 0 && *end == '\0';
}

tav_decimal_t* tav_decimal(const char* text, tav_ebuf* ebuf) {
  const request about{ebuf};
  return guarded<tav_decimal_t*>(about, [&]() -> tav_decimal_t* {
    if (text == nullptr) return fail(about, TAV_ERR_BAD_ARG);
    if (!is_decimal(text)) return fail(about, TAV_ERR_BAD_VALUE);
    return new_decimal(text);
  });
}

tav_decimal_t* tav_decimal_alloc_result_zero(tav_ebuf* ebuf) {
  return tav_decimal("0", ebuf);
}

void tav_decimal_to_str(const tav_decimal_t* decimal, int32_t, char* buffer, size_t size,
                        tav_ebuf* ebuf) {
  const request about{ebuf};
  guarded<void>(about, [&] {
    if (decimal == nullptr || buffer == nullptr || std::strlen(decimal->text()) >= size) {
      fail(about, TAV_ERR_BAD_ARG);
      return;
    }
    std::strcpy(buffer, decimal->text());
  });
}
