#pragma once

#include "views/ViewsBusy.h"

#include <QAbstractItemView>
#include <QMouseEvent>
#include <QPainter>
#include <QString>

namespace thntfs {

/// Who acts on what the user does with the rows of a list, whichever widget shows them. An index may be
/// invalid, off the rows.
class RowActions {
public:
    virtual void DoubleClicked(const QModelIndex& index) = 0;
    virtual void RightClicked(const QModelIndex& index, const QPoint& at) = 0;
    /// True when the key was meant for it.
    virtual bool KeyPressed(int key) = 0;
    /// The user wants what is selected on the clipboard.
    virtual void CopySelected() = 0;
    /// Tab, or with `next` false Shift+Tab. False when there is nowhere to go.
    virtual bool LeaveByTab(bool next) = 0;
    /// What stands where the rows would be; empty for nothing.
    [[nodiscard]] virtual QString EmptyText() const = 0;

protected:
    ~RowActions() = default;
};

/// A view of rows that hands the user's orders on. A busy program takes no clicks.
template <typename View>
class CRowView : public View {
public:
    CRowView(RowActions& actions, QWidget* parent)
        : View(parent)
        , actions_(actions) {
        this->setContextMenuPolicy(Qt::PreventContextMenu);
        this->setEditTriggers(QAbstractItemView::NoEditTriggers);
        this->setSelectionMode(QAbstractItemView::ExtendedSelection);
        this->setSelectionBehavior(QAbstractItemView::SelectRows);
    }

protected:
    bool viewportEvent(QEvent* event) override {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            return ViewsBusy() || View::viewportEvent(event);
        default:
            return View::viewportEvent(event);
        }
    }

    void mousePressEvent(QMouseEvent* event) override {
        View::mousePressEvent(event);
        if (event->button() == Qt::RightButton) {
            actions_.RightClicked(this->indexAt(event->position().toPoint()),
                                  event->globalPosition().toPoint());
        }
    }

    void mouseDoubleClickEvent(QMouseEvent* event) override {
        View::mouseDoubleClickEvent(event);
        if (event->button() == Qt::LeftButton) {
            actions_.DoubleClicked(this->indexAt(event->position().toPoint()));
        }
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Copy)) {
            actions_.CopySelected();
        } else if (!actions_.KeyPressed(event->key())) {
            View::keyPressEvent(event);
        }
    }

    bool focusNextPrevChild(bool next) override {
        return actions_.LeaveByTab(next) || View::focusNextPrevChild(next);
    }

    void paintEvent(QPaintEvent* event) override {
        constexpr int kMargin = 12;
        View::paintEvent(event);
        const QRect room = this->viewport()->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
        QPainter(this->viewport())
            .drawText(room, int{Qt::AlignCenter} | int{Qt::TextWordWrap}, actions_.EmptyText());
    }

private:
    RowActions& actions_;
};

} // namespace thntfs
