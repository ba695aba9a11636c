#pragma once

#include "views/ViewsBusy.h"

#include <QAbstractItemView>
#include <QMouseEvent>

namespace thntfs {

/// Who acts on what the user does with the rows of a list, whichever widget shows them. An index may be
/// invalid, off the rows.
class RowActions {
public:
    virtual void DoubleClicked(const QModelIndex& index) = 0;
    virtual void RightClicked(const QModelIndex& index, const QPoint& at) = 0;
    /// True when the key was meant for it.
    virtual bool KeyPressed(int key) = 0;
    /// False when there is nowhere to go with the Tab key.
    virtual bool LeaveByTab() = 0;

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
        if (!actions_.KeyPressed(event->key())) {
            View::keyPressEvent(event);
        }
    }

    bool focusNextPrevChild(bool next) override {
        return actions_.LeaveByTab() || View::focusNextPrevChild(next);
    }

private:
    RowActions& actions_;
};

} // namespace thntfs
