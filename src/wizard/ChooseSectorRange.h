#pragma once

#include <QCoreApplication>
#include <QDialog>
#include <cstdint>

class QLabel;
class QLineEdit;
class QPushButton;

namespace thntfs {

class CScanArea;

/// Asks for the sectors that a thorough scan covers. The range is tested, and shown as a bar, with every
/// change.
class CChooseSectorRange : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CChooseSectorRange)

public:
    CChooseSectorRange(QWidget* owner, std::uint64_t totalSectors);

    void accept() override;

    std::uint64_t StartSector = 0;
    std::uint64_t EndSector = 0; ///< not included

private:
    void MakeParts();
    void LayOut();
    QLayout* DefaultRangeLine();
    QLayout* LegendLine();
    void Validate();
    void ShowFault(const char* text, QLineEdit* faulty);
    void ShowRange();
    [[nodiscard]] int PercentOf(std::uint64_t sector) const;

    std::uint64_t totalSectors_;
    QLineEdit* start_;
    QLineEdit* end_;
    QLabel* size_;
    CScanArea* bar_;
    QPushButton* ok_;
    QPushButton* cancel_;
};

} // namespace thntfs
