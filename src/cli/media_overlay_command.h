// quillbox media overlay and media avs.
#pragma once

#include <QStringList>
#include <QTextStream>

namespace qb::cli {

// overlay OUT.ass|OUT.ssa [--title TEXT1 [TEXT2]] [--banner TEXT] [--logo TEXT] [--size WxH]
// [--from S --to S]: writes the timed overlay document (the advanced form for .ass).
int RunOverlayCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

// avs SRC... [job options] [-o OUT.avs] [--core PATH]: prints, or writes, the frame-server
// script of the job; the files it loads are the job's temporary files and go when it ends.
int RunAvsCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

QString MediaOverlayUsage();

} // namespace qb::cli
