// The size rules of formats that take only some picture sizes.
#include "engine/compose_input.h"

#include "engine/job_settings.h"

#include <QFileInfo>

#include <algorithm>

namespace qb::engine {

void ApplySizeRule(SizeRule rule, int &width, int &height)
{
    if (width < 1 || height < 1)
        return;
    switch (rule) {
    case SizeRule::Free:
        return;
    case SizeRule::Multiple16:
        width = std::max(16, width / 16 * 16);
        height = std::max(16, height / 16 * 16);
        return;
    case SizeRule::H263Sizes: {
        // The largest standard picture that fits, else the smallest.
        static constexpr int kSizes[][2] = {{1408, 1152}, {704, 576}, {352, 288}, {176, 144}, {128, 96}};
        for (const auto &size : kSizes) {
            if (size[0] <= width && size[1] <= height) {
                width = size[0];
                height = size[1];
                return;
            }
        }
        width = 128;
        height = 96;
        return;
    }
    }
}

QString OutputExtension(const JobSettings &job, const char16_t *rowExtension, const char16_t *driveExtension)
{
    QString extension = rowExtension ? QString::fromUtf16(rowExtension) : QString();
    if (extension == QStringLiteral("{name}"))
        extension = job.FileOutput.ForceFormat;
    else if (extension == QStringLiteral("{src}"))
        extension = job.FileName.endsWith(u':')
            ? (driveExtension ? QString::fromUtf16(driveExtension) : QString())
            : QFileInfo(job.FileName).suffix();
    if (!job.FileOutput.FileNameSuffix.isEmpty())
        extension = job.FileOutput.FileNameSuffix;
    return job.FileOutput.UcaseNameSuffix ? extension.toUpper() : extension;
}

} // namespace qb::engine
