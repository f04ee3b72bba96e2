// The quillbox command: one front for scripting the libraries.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// Runs one command line (without the program name). Output goes to out, messages to err.
// Returns the process exit status: 0 on success, 1 on a failed operation, 2 on bad usage.
int RunQuillbox(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace qb::cli
