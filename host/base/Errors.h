// The system's exceptions. Each carries a text that a user can understand.
#pragma once

#include <stdexcept>
#include <string>

namespace quill {

// Base of all exceptions of the library; GetMessage is the text, in UTF-8.
class Exception : public std::runtime_error {
public:
    explicit Exception(const std::string& Message) : std::runtime_error(Message) {}
    std::string GetMessage() const { return what(); }
};

// A text that should be a number is none (StrToInt).
class EConvertError : public Exception {
    using Exception::Exception;
};
// An index outside a list.
class EListError : public Exception {
    using Exception::Exception;
};
// An index outside a string list.
class EStringListError : public Exception {
    using Exception::Exception;
};
// Base of all stream faults.
class EStreamError : public Exception {
    using Exception::Exception;
};
// A file that cannot be created.
class EFCreateError : public EStreamError {
    using EStreamError::EStreamError;
};
// A file that cannot be opened.
class EFOpenError : public EStreamError {
    using EStreamError::EStreamError;
};
// A stream that ended early or holds something else than was asked for.
class EReadError : public EStreamError {
    using EStreamError::EStreamError;
};
// A stream that did not take all bytes (a full disk, for example).
class EWriteError : public EStreamError {
    using EStreamError::EStreamError;
};
// An operation that does not fit the object's state or arguments.
class EInvalidOperation : public Exception {
    using Exception::Exception;
};

} // namespace quill
