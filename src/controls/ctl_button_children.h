// The child controls that the multi-mode control places over its field in the text and combo modes.
#pragma once

#include <QComboBox>

namespace qb::controls {

// A combo box that says when its list closes, chosen or not, so the control can take it away.
class ButtonComboBox : public QComboBox
{
    Q_OBJECT

public:
    using QComboBox::QComboBox;

    void hidePopup() override
    {
        QComboBox::hidePopup();
        Q_EMIT popupHidden();
    }

Q_SIGNALS:
    void popupHidden();
};

} // namespace qb::controls
