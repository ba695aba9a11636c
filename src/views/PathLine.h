#pragma once

#include <QCoreApplication>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <vector>

class QToolButton;

namespace thntfs {

/// A part of the way that leads from the medium to what the list shows.
struct PathPart {
    QString Text;
    QString Tip;               ///< where it says more than the text
    std::uint32_t EntryId = 0; ///< folder that a click goes to
};

/// The line that tells where one is, a button a part. Where there isn't room for all, those in the middle
/// stand in the menu of a button between the others. The whole can be copied, by its menu or by Ctrl+C.
class CPathLine : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CPathLine)

public:
    /// Calls `goTo` with the EntryId of the part that was chosen.
    CPathLine(QWidget* parent, std::function<void(std::uint32_t entryId)> goTo);

    /// Shows other parts, none for an empty line. `whole` is what a copy gives.
    void Show(std::vector<PathPart> parts, const QString& whole);

    void CopyPath() const;
    /// Moves the focus to the last part.
    void TakeFocus();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    struct Shown; ///< parts before and behind those that are left out

    [[nodiscard]] Shown WhatFits() const;
    [[nodiscard]] int WidthOf(const QString& text) const;
    [[nodiscard]] int WidthOfPart(std::size_t part) const;
    [[nodiscard]] int Gap() const;
    void LayOut();
    void Place(std::size_t button, std::size_t part, int width, int& left);
    void Clicked(std::size_t button);
    void OfferLeftOut(const QWidget& below);
    QToolButton& Button(std::size_t number);

    std::function<void(std::uint32_t)> goTo_;
    std::vector<PathPart> parts_;
    QString whole_;
    std::vector<QToolButton*> buttons_; ///< made as they are needed
    std::vector<std::size_t> partOf_;   ///< of each button that shows; kLeftOut for what opens the menu
};

} // namespace thntfs
