#pragma once

#include <QString>

/// A member's PIN for the web catalogue, set at the desk and asked at sign-in. Only its Argon2id
/// hash (libsodium) is kept, in the library database; the PIN itself is never stored.
namespace MemberPin {
/// Why a PIN cannot be used ("The PIN must be 4 to 8 digits."), or empty.
QString refusal(const QString &pin);
/// Sets or replaces the member's PIN. Throws AppError (nothing changed) for a refused PIN or a failed write.
void set(const QString &memberType, int memberID, const QString &pin);
/// Whether pin is the member's PIN; false when none is set.
bool matches(const QString &memberType, int memberID, const QString &pin);
} // namespace MemberPin
