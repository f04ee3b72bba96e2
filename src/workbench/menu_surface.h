// The menu entries whose state the workbench changes, and what it asks of the window's menus.
#pragma once

namespace qb::workbench {

enum class Menu {
    Open,
    Extract,
    Save, // index 0, "保存 (&S)"
    SaveAs, // index 1, "另存为 (&A)"
    AddBase,
    Delete,
    Clear,
    Cancel,
};

class MenuSurface
{
public:
    virtual ~MenuSurface() = default;
    virtual void setMenuEnabled(Menu menu, bool on) = 0;
    virtual bool menuEnabled(Menu menu) const = 0;
};

} // namespace qb::workbench
