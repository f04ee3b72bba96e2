// A contact sheet: frames of a video in a grid under an optional header, with their times and a
// comment. The layout rule: columns × frame width + edge + indentation across, rows × frame height
// + edge + indentation + header down; the margin is split evenly around the grid.
#pragma once

#include <QImage>
#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>

namespace qb::imaging {

struct SheetSettings
{
    int columns = 3;
    int rows = 5;
    QSize frame; // each cell
    int edgeWidth = 0;
    int borderIndentation = 0;
    QStringList header; // lines above the grid; none for no header
    QStringList frameTimes; // one per frame, drawn in its cell's lower right; none for no times
    QString comment; // drawn in the sheet's lower left when set
    QString fontName = QStringLiteral("Sans");
    int fontSize = 10;
    qint32 foreColor = 0xFFFFFF; // 0x00BBGGRR
    qint32 backColor = 0;
    int backStyle = 3; // 1 top-to-bottom fade, 2 left-to-right fade, 3 flat
};

// Each channel moved by amount and kept inside 0..255; the fades run from the back colour to it.
qint32 ShiftColor(qint32 color, int amount);

// The header's height for the settings' font: a line and a half per line, 8 pixels of air.
int SheetHeaderHeight(const SheetSettings &settings);

QSize SheetSize(const SheetSettings &settings);

// Time points of count frames spread evenly through duration seconds, never at either end.
QList<double> SheetTimePoints(double duration, int count);

// Draws the sheet; frames beyond the grid are ignored, missing ones leave their cell empty. Text
// needs a GUI application object (fonts live there): without one the sheet has no text.
QImage DrawContactSheet(const QList<QImage> &frames, const SheetSettings &settings);

} // namespace qb::imaging
