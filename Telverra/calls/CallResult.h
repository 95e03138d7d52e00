#pragma once

#include "CallsManagerError.h"

#include <QString>

#include <functional>
#include <optional>

/// The outcome of a launch: success with the destination (as the caller passed it, or the meeting address found),
/// or failure with its error.
class CallResult
{
public:
    static CallResult success(const QString &value) { return CallResult(value, std::nullopt); }
    static CallResult failure(const CallsManagerError &error) { return CallResult({}, error); }

    bool isSuccess() const { return !m_error.has_value(); }
    /// The destination on success; empty on failure.
    const QString &value() const { return m_value; }
    /// The error on failure. Only valid when isSuccess() is false.
    const CallsManagerError &error() const { return *m_error; }

    friend bool operator==(const CallResult &, const CallResult &) = default;

private:
    CallResult(const QString &value, std::optional<CallsManagerError> error)
        : m_value(value)
        , m_error(std::move(error))
    {}

    QString m_value;
    std::optional<CallsManagerError> m_error;
};

using CallCompletion = std::function<void(const CallResult &)>;
