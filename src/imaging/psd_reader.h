// Our reader of the merged picture a layered-image file keeps after its layers: RGB and grey, 8
// and 16 bits a channel, raw or run-length packed, with or without alpha. Everything else is
// refused with a reason. Hostile headers are checked against the bytes at hand before anything
// is allocated, so a lie about the size never reads past the end or asks for more memory than
// the data could fill.
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

namespace qb::imaging {

struct PsdResult
{
    QImage image; // null when refused
    QString problem; // why, for a person
};

PsdResult ReadPsdComposite(const QByteArray &data);

// The file's merged picture as PNG bytes; empty when the file is missing or refused.
QByteArray LoadPsdFileToByte(const QString &fileName);

} // namespace qb::imaging
