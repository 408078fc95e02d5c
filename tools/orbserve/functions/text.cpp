// SPDX-License-Identifier: MIT
// The function for char arrays: upper.
#include <clocale>
#include <cwctype>

#include <locale.h>

#include "functions.h"
#include "messages.h"
#include "values.h"

namespace orb::serve {

// Letters of one UTF-16 unit become their capital where that is one unit too.
void upper(Call& call) {
  static const locale_t kUnicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  Array& text = *call.inputs.Mutable(0);
  if (text.type() != Array::CHAR) {
    throw CallError("class", "expected a char array, got " + summary(text));
  }
  for (uint32_t& unit : *text.mutable_qxchar()->mutable_elements()) {
    const wint_t capital = towupper_l(unit, kUnicode);
    if (capital <= 0xffff) unit = capital;
  }
  call.put(std::move(text));
}

}  // namespace orb::serve
