// Filers: what an object writes besides its published properties, and how it is read back.
#pragma once

#include "host/base/Streams.h"

#include <functional>
#include <string>

namespace quill {

// Common side of readers and writers of component streams. An object's DefineProperties calls the two Define
// operations; a reader then calls the reading function of the property it meets, a writer the writing functions of
// those that have data.
class TFiler {
public:
    virtual ~TFiler() = default;
    virtual void DefineProperty(const std::string& Name, std::function<void(class TReader&)> ReadData,
                                std::function<void(class TWriter&)> WriteData, bool HasData) = 0;
    virtual void DefineBinaryProperty(const std::string& Name, std::function<void(TStream&)> ReadData,
                                      std::function<void(TStream&)> WriteData, bool HasData) = 0;
    // The component this one is compared with when only differences are stored; null when there is none.
    TPersistent* GetAncestor() const { return FAncestor; }
    void SetAncestor(TPersistent* Value) { FAncestor = Value; }

private:
    TPersistent* FAncestor = nullptr;
};

// Values read from the list of one property. Each raises EReadError when something else stands there.
class TReader : public TFiler {
public:
    virtual void ReadListBegin() = 0;
    virtual void ReadListEnd() = 0;
    virtual bool EndOfList() = 0;
    virtual int ReadInteger() = 0;
    virtual bool ReadBoolean() = 0;
    virtual std::string ReadString() = 0;
};

class TWriter : public TFiler {
public:
    virtual void WriteListBegin() = 0;
    virtual void WriteListEnd() = 0;
    virtual void WriteInteger(int Value) = 0;
    virtual void WriteBoolean(bool Value) = 0;
    virtual void WriteString(const std::string& Value) = 0;
};

} // namespace quill
