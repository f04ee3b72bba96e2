// The report file and the information file that makecab leaves beside a build.
#pragma once

#include "cabmaker/cabinet_writer.h"

namespace qb::cabmaker {

// A human-readable account of the build: when, what went in, sizes, time.
QString ReportText(const BuildPlan &plan, const CabinetStats &stats, double seconds);

// A setup information file listing the disk, the cabinet and every file with its size, date,
// time and attributes, in sections [disk list], [cabinet list] and [file list].
QString InformationText(const BuildPlan &plan, const CabinetStats &stats);

// Writes text as UTF-8 with CR LF line ends through a temporary file renamed into place.
bool WriteTextFileAtomically(const QString &path, const QString &text, QString &why);

} // namespace qb::cabmaker
