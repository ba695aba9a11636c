#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QWidget>
#include <deque>
#include <functional>

namespace thntfs::test {

/// The user's steps through modal windows: each is done once a window of its kind is the active one, also
/// where the step before still stands in a call that has opened that window.
class ModalSteps : public QObject {
public:
    ModalSteps();

    /// Adds a step, behind those that are there.
    template <typename Window>
    void When(std::function<void(Window&)> act) {
        steps_.push_back({[](QWidget* active) { return dynamic_cast<Window*>(active) != nullptr; },
                          [act](QWidget* active) { act(*static_cast<Window*>(active)); }});
    }

    [[nodiscard]] bool AllDone() const { return steps_.empty(); }

private:
    struct Step {
        std::function<bool(QWidget*)> Fits;
        std::function<void(QWidget*)> Act;
    };

    void Look();
    void DoNext();
    void GiveUp(QWidget& active);

    QTimer timer_;
    QElapsedTimer since_; ///< the last step
    std::deque<Step> steps_;
    bool queued_ = false;
};

} // namespace thntfs::test
