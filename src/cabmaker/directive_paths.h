// Path and message helpers shared by the parts of the directive interpreter.
#pragma once

#include <QString>

namespace qb::cabmaker {

// An absolute "/"-separated path without empty or "." parts. ".." stays: the system resolves it
// correctly past a symbolic link, where cutting it out by text would not.
QString TidyPath(const QString &path);

// path itself when it starts with "/", else base + "/" + path; tidied either way.
QString AbsolutePathFrom(const QString &base, const QString &path);

// Control characters would garble a one-line message, so they show as "?".
QString PrintableText(QString text);

} // namespace qb::cabmaker
