#pragma once

#include <string>
#include <vector>

class QAbstractButton;
class QWidget;

namespace thntfs::test {

using Texts = std::vector<std::string>;

/// A button of a window by its text without the mnemonic's sign and blanks around it; null for none that
/// shows.
QAbstractButton* ButtonOf(const QWidget& window, const char* text);

/// A click on it.
void Press(const QWidget& window, const char* text);

/// The cells of a table, a text a row, with " | " between.
Texts RowsShown(const QWidget& window);

} // namespace thntfs::test
