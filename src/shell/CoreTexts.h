#pragma once

#include <QCoreApplication>
#include <QString>
#include <string>

namespace thntfs {

/// A text of the core in the user's language. One that CoreText doesn't mark stays as it is, so it may be any
/// text.
inline QString ShownCoreText(const std::string& text) {
    return text.empty() ? QString() : QCoreApplication::translate("Core", text.c_str());
}

} // namespace thntfs
