#pragma once

#include <QCoreApplication>
#include <QDialog>
#include <cstdint>
#include <string>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLayout;
class QLineEdit;
class QPushButton;

namespace thntfs {

/// Asks what is to be found. The filters stand in its lower half, which is closed at first.
class CTHNTFSFindFile : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(CTHNTFSFindFile)

public:
    explicit CTHNTFSFindFile(QWidget* owner);

    std::string Pattern; ///< narrow text
    bool MatchCase = false;
    bool SizeOn = false;
    std::uint64_t SizeValue = 0; ///< bytes
    std::uint8_t SizeMode = 0;   ///< 0 at least, 1 at most
    bool DateOn = false;
    std::uint16_t DateFrom = 0; ///< DOS dates
    std::uint16_t DateTo = 0;
    std::uint8_t DateMode = 0; ///< 0 last access, 1 creation
    bool AllInOneList = false;

    void accept() override;

private:
    void MakeParts();
    void LayOut();
    QLayout* PatternLine();
    QLayout* SizeLine();
    QLayout* DateLine();
    void Connect();

    void ToggleOptions();
    void SwitchSize(bool on);
    void SwitchDate(bool on);
    void TakeUnit();
    void TakeSize();
    void TakeDates();
    void Judge();

    QLineEdit* pattern_;
    QCheckBox* matchCase_;
    QPushButton* options_;
    QPushButton* search_;
    QPushButton* cancel_;
    QWidget* filters_; ///< the lower half
    QCheckBox* size_;
    QComboBox* sizeMode_;
    QLineEdit* sizeNumber_;
    QComboBox* sizeUnit_;
    QCheckBox* date_;
    QComboBox* dateMode_;
    QDateEdit* from_;
    QDateEdit* to_;
    QCheckBox* oneList_;
};

} // namespace thntfs
