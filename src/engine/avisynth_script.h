// The frame-server script of a job: a fixed set of helper functions, a body of calls on the
// source and one function per effect after it. Composing is pure: what the script refers to on
// disk is found and written beforehand and handed in.
#pragma once

#include "engine/job_settings.h"

#include <QString>
#include <QStringList>

namespace qb::engine {

struct ScriptAttachments
{
    QString subtitlePlugin; // the subtitle renderer's plugin, "" when it is missing
    QStringList subtitleCalls; // "TextSub(...)" and "VobSub(...)" lines, in order
    bool audioReplaceFound = false;
    bool insertImageFound = false;
    bool logoImageFound = false;
};

// A file name as a script string; a name holding a double quote takes the triple-quote form, so
// that no name can end the string early.
QString ScriptQuoted(const QString &fileName);

// The whole script for the sources of job.FileInfo ("|"-joined) at the target size.
QString ComposeAviSynthScript(
    const JobSettings &job, const ScriptAttachments &files, int outWidth, int outHeight);

} // namespace qb::engine
