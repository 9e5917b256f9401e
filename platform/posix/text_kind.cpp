// text_kind.cpp - is a piece of bytes UTF-16 text? Promises: a byte-order mark decides; without one, text counts as UTF-16 when
// it has an even length and at least half of its high bytes, and none of its low bytes, are zero. Refuses: the platform's
// further guesses (reversed order without a mark, control characters, illegal pairs).
#include "platform/posix/kernel.h"

namespace {

constexpr INT kOffered =
    IS_TEXT_UNICODE_STATISTICS | IS_TEXT_UNICODE_SIGNATURE | IS_TEXT_UNICODE_REVERSE_SIGNATURE | IS_TEXT_UNICODE_ODD_LENGTH;

bool looksWide(const BYTE* bytes, INT count) {
    const INT mostOther = count / 2 - (count / 2 + 1) / 2;  // high bytes that may be something else
    INT other = 0;
    for (INT i = 0; i + 1 < count && other <= mostOther; i += 2) {
        if (bytes[i] == 0) return false;
        other += bytes[i + 1] == 0 ? 0 : 1;
    }
    return other <= mostOther;
}

INT findingsOf(const BYTE* bytes, INT count) {
    if (count < 2) return count == 1 ? IS_TEXT_UNICODE_ODD_LENGTH : 0;
    INT findings = count % 2 != 0 ? IS_TEXT_UNICODE_ODD_LENGTH : 0;
    if (bytes[0] == 0xFF && bytes[1] == 0xFE) findings |= IS_TEXT_UNICODE_SIGNATURE;
    if (bytes[0] == 0xFE && bytes[1] == 0xFF) findings |= IS_TEXT_UNICODE_REVERSE_SIGNATURE;
    if (count % 2 == 0 && looksWide(bytes, count)) findings |= IS_TEXT_UNICODE_STATISTICS;
    return findings;
}

}  // namespace

BOOL IsTextUnicode(const void* buffer, INT bytes, INT* result) {
    INT findings = buffer == nullptr ? 0 : findingsOf(static_cast<const BYTE*>(buffer), bytes);
    if (result != nullptr) {
        findings &= *result;
        *result = findings & kOffered;
    }
    return (findings & (IS_TEXT_UNICODE_SIGNATURE | IS_TEXT_UNICODE_STATISTICS)) != 0 ? TRUE : FALSE;
}
