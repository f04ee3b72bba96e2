// Mapping between priority classes and nice values.
#include "util/process_priority.h"

#include <array>
#include <cstdlib>

namespace qb::util {

namespace {

struct ClassNice
{
    int priorityClass;
    int nice;
};

constexpr std::array<ClassNice, 6> kClasses {{{kPriorityIdle, 19}, {kPriorityBelowNormal, 10},
    {kPriorityNormal, 0}, {kPriorityAboveNormal, -5}, {kPriorityHigh, -10}, {kPriorityRealtime, -15}}};

} // namespace

int NiceForPriorityClass(int priorityClass)
{
    for (const ClassNice &entry : kClasses) {
        if (entry.priorityClass == priorityClass)
            return entry.nice;
    }
    return 0;
}

int PriorityClassForNice(int nice)
{
    const ClassNice *best = &kClasses[0];
    for (const ClassNice &entry : kClasses) {
        // Ties go to the less urgent class, which is listed first.
        if (std::abs(entry.nice - nice) < std::abs(best->nice - nice))
            best = &entry;
    }
    return best->priorityClass;
}

} // namespace qb::util
