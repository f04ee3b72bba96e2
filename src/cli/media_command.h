// quillbox media: what the engine knows of tools and sources, for people and for scripts.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// arguments: tools [PATH...] | probe FILE... [--json] [--core PATH] (without "media"). Returns 0
// on success, 1 when a tool or a file could not be read, 2 on bad usage.
int RunMediaCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace qb::cli
