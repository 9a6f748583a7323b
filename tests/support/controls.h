#pragma once

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

} // namespace mms::test
