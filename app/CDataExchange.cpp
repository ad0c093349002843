// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/CDataExchange.h"

#include <QLineEdit>

#include "app/CModalSeam.h"

namespace {

void Refuse(QLineEdit* field, const QString& message) {
    CModalSeam::Message(field->window(), message, QMessageBox::Ok, QMessageBox::Warning);
    field->setFocus(Qt::OtherFocusReason);
    field->selectAll();
}

}  // namespace

bool CDataExchange::Pull(QLineEdit* field, int& value, std::optional<Range> range) {
    bool ok = false;
    const int parsed = field->text().trimmed().toInt(&ok);
    if (!ok) {
        Refuse(field, QObject::tr("Please enter an integer."));
        return false;
    }
    if (range && (parsed < range->min || parsed > range->max)) {
        Refuse(field, QObject::tr("Please enter an integer between %1 and %2.")
                          .arg(range->min)
                          .arg(range->max));
        return false;
    }
    value = parsed;
    return true;
}

void CDataExchange::Push(QLineEdit* field, int value) {
    field->setText(QString::number(value));
}
