#pragma once

#include <QApplication>
#include <QKeyEvent>
#include <QObject>
#include <QString>
#include <gtest/gtest.h>
#include <memory>

namespace mms::test {

// A window's control by its object name (the names the handlers use). Fails the test, rather than
// crashing it, when the window has no such control.
template <class T> T* ctl(const QObject& window, const char* name) {
    T* found = window.findChild<T*>(QLatin1String(name));
    if (!found) ADD_FAILURE() << "no control " << name;
    return found;
}

template <class T> T* ctl(const QObject* window, const char* name) {
    return ctl<T>(*window, name);
}

template <class T, class W> T* ctl(const std::unique_ptr<W>& window, const char* name) {
    return ctl<T>(*window, name);
}

// '1' or '0' for each named control or action of `window`: whether it is enabled.
inline QString enabled(const QObject& window, std::initializer_list<const char*> names) {
    QString out;
    for (const char* name : names) {
        const QObject* found = ctl<QObject>(window, name);
        out += found && found->property("enabled").toBool() ? u'1' : u'0';
    }
    return out;
}

// Keystrokes sent straight to `target`, as typed.
inline void type(QWidget* target, const QString& text) {
    for (QChar c : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(target, &press);
    }
}
inline void pressKey(QWidget* target, int key) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(target, &press);
}

} // namespace mms::test
