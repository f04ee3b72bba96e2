// Names of the status codes.
#include "engine/status_codes.h"

#include <array>

namespace qb::engine {

QString GetStatusString(int Status)
{
    static constexpr std::array<const char16_t *, 10> kNames {u"Starting", u"Processing", u"Complete",
        u"Error", u"Canceled", u"SettingChanged", u"InfoString", u"CreateThumb", u"CancelFailed",
        u"Searching"};
    if (Status < 0 || Status >= static_cast<int>(kNames.size()))
        return {};
    return QString::fromUtf16(kNames[static_cast<size_t>(Status)]);
}

} // namespace qb::engine
