#pragma once

#include <QString>
#include <utility>

namespace mms {

// The outcome of an operation that can fail on files: success, or a message that names what failed.
class [[nodiscard]] Status {
public:
    static Status ok() { return Status(); }
    static Status failure(QString message) { return Status(std::move(message)); }

    bool isOk() const { return !failed_; }
    explicit operator bool() const { return !failed_; }
    const QString& message() const { return message_; }

private:
    Status() = default;
    explicit Status(QString message) : failed_(true), message_(std::move(message)) {}
    bool failed_ = false;
    QString message_;
};

} // namespace mms
