// quillbox media sheet: a contact sheet of a video.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// sheet VIDEO OUT.jpg [--grid CxR] [--size 300max|WxH] [--core PATH]; 0 written, 1 failed, 2 usage.
int RunSheetCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace qb::cli
