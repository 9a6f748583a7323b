#pragma once

#include "common/localisation.h"
#include "model/status.h"

#include <QByteArray>
#include <QString>

namespace mms {

// The human-editable form of a language file, one entry per line:
//
//   # comment
//   language = English
//   format = 1
//   prompt.1 = Delete the selected message?
//   interface.26 = Total
//
// Text runs from the first non-blank after "=" to the last non-blank of the line. Escapes: \n line
// break, \t tab, \s a space (for a space at either end), \\ a backslash. Each group's numbers run
// from 0 without gaps, in any order.
struct LanguageSource {
    QString language;
    int format = 0;
    LanguageTexts texts;
};

inline constexpr int kLanguageSourceFormat = 1;

// Fails with "<sourceName>:<line>: <what is wrong>"; out is then unspecified.
Status parseLanguageSource(const QString& text, const QString& sourceName, LanguageSource& out);

// A translation must hold the same entry numbers as the reference language, and each entry the
// same %1..%9 placeholders, so that no text is lost or shifted and no detail goes unshown.
Status checkAgainstReference(const LanguageSource& translation, const LanguageSource& reference);

// The binary language file: five header sections (name, language, format, origin, empty) and the
// three groups, the last one closed by a group marker. Fails when a text would not read back as
// written (its end would form a marker).
Status buildLanguageFile(const LanguageSource& source, const QString& sourceName, QByteArray& out);

} // namespace mms
