#pragma once

#include <QCoreApplication>
#include <QString>

namespace thntfs {

/// What a name that the user types may not hold.
inline QString NameRuleText() {
    return QCoreApplication::translate(
        "NameRules",
        "A file/ folder cannot contain following special characters:\n\\/ : * ? \" < > |<space>");
}

inline constexpr const char* kForbiddenInNames = "\\/:*?\"<>|";

/// Whether a text holds one of the characters of a list.
inline bool HoldsAnyOf(const QString& text, const char* characters) {
    const QString list = QLatin1String(characters);
    for (const QChar c : text) {
        if (list.contains(c)) {
            return true;
        }
    }
    return false;
}

/// True for a name that may be typed, by the rule of NameRuleText.
inline bool MayBeTyped(const QString& name) {
    return !HoldsAnyOf(name, kForbiddenInNames) && !name.contains(QLatin1Char(' '));
}

} // namespace thntfs
