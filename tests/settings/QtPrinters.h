// Lets gtest show Qt strings as text in failure messages.
#pragma once

#include <QByteArray>
#include <QString>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* pOut) {
    *pOut << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QByteArray& data, std::ostream* pOut) {
    *pOut << "hex " << data.toHex().toStdString();
}
