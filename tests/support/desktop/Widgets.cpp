#include "support/desktop/Widgets.h"

#include <QAbstractButton>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>

namespace thntfs::test {

QAbstractButton* ButtonOf(const QWidget& window, const char* text) {
    const auto buttons = window.findChildren<QAbstractButton*>();
    for (QAbstractButton* button : buttons) {
        const QString shown = button->text().remove(QLatin1Char('&')).trimmed();
        if (button->isVisible() && shown == QLatin1String(text)) {
            return button;
        }
    }
    return nullptr;
}

void Press(const QWidget& window, const char* text) {
    QAbstractButton* button = ButtonOf(window, text);
    ASSERT_NE(button, nullptr) << text;
    QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2});
}

Texts RowsShown(const QWidget& window) {
    const auto& table = *window.findChild<QTableWidget*>();
    Texts rows;
    for (int row = 0; row < table.rowCount(); ++row) {
        std::string text;
        for (int column = 0; column < table.columnCount(); ++column) {
            const QTableWidgetItem* cell = table.item(row, column);
            text += (column == 0 ? "" : " | ") + (cell == nullptr ? "" : cell->text().toStdString());
        }
        rows.push_back(text);
    }
    return rows;
}

} // namespace thntfs::test
