// What the workbench asks of its status strip: a caption and a progress bar.
#pragma once

#include <QString>

namespace qb::workbench {

class StripSurface
{
public:
    virtual ~StripSurface() = default;
    virtual QString Caption() const = 0;
    virtual void setCaption(const QString &text) = 0;
    virtual double value() const = 0;
    virtual void setvalue(double position) = 0;
    virtual double Max() const = 0;
    virtual void setMax(double end) = 0;
    // False holds painting back while several properties change; True paints once.
    virtual bool Refresh() const = 0;
    virtual void setRefresh(bool on) = 0;
};

} // namespace qb::workbench
