#pragma once

#include <QString>

// Passwords of publish destinations the user asked the window to remember, kept in the desktop's
// secret store (libsecret), never in a file of this program. Each is known by the destination's
// key. Every call may wait on the secret store: call off the window's thread.
namespace PublishPasswords {

// The remembered password of the destination, or "" (also when there is no secret store).
QString lookup(const QString& destinationKey);
// Remembers the password; false with the reason in `error` when the secret store cannot.
bool store(const QString& destinationKey, const QString& password, QString* error);
// Forgets it.
void forget(const QString& destinationKey);

}  // namespace PublishPasswords
