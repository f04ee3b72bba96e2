// The state of a picture taken from frames while it is being made: one frame per event-loop turn.
#pragma once

#include "engine/ffmpegx.h"
#include "imaging/contact_sheet.h"

#include <QImage>
#include <QList>

#include <functional>

namespace qb::engine {

struct FFmpegX::SheetWork
{
    QString output;
    QString source;
    QString format;
    bool raise = true;
    imaging::SheetSettings layout;
    QList<double> times;
    QList<QImage> frames;
    std::function<void()> done;
};

} // namespace qb::engine
