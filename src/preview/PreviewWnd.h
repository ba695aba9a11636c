#pragma once

#include "preview/HexText.h"

#include <QCoreApplication>
#include <QWidget>
#include <functional>

class QCheckBox;
class QHeaderView;
class QLabel;
class QLineEdit;

namespace thntfs {

class CHexView;
struct CatalogueItem;

/// Shows the bytes of a file. Its PreviewBuffer lives as long as the window is open.
class CPreviewWnd : public QWidget {
    Q_DECLARE_TR_FUNCTIONS(CPreviewWnd)

public:
    /// Loads the entry's bytes; where that fails the window says so. `closed` is called once, when the window
    /// has been closed; it may see to it that the window goes.
    CPreviewWnd(const CatalogueItem& entry, std::function<void()> closed);
    ~CPreviewWnd() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QHeaderView* CreateHeader();
    QWidget* CreateFindBar();
    void CreateActions();
    void OpenFindBar();
    void EscapePressed();
    void FindNext();
    static void FreeBuffer();

    std::function<void()> closed_; ///< empty once it has been called
    CHexView* view_;
    QWidget* findBar_ = nullptr;
    QLineEdit* wanted_ = nullptr;
    QCheckBox* asBytes_ = nullptr;
    QLabel* result_ = nullptr;
    HexMatch lastHit_; ///< of a search; nothing yet while its length is 0
};

} // namespace thntfs
