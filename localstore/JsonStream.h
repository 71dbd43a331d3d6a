// A JSON file that is read as a stream.
#pragma once

#include "localstore/JsonReader.h"
#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <string>

// A file opened for reading, which nobody can write to meanwhile.
class JsonFile
{
  public:
    // False, with the system's reason, where it cannot be opened.
    bool Open(const std::wstring& path, DWORD& reason);

    HANDLE Get() const noexcept { return m_file.Get(); }

  private:
    UniqueFile m_file;
};

// Reads the whole file from its start. Throws JsonProblem, see JsonReader.h.
void ReadJson(const JsonFile& file, JsonListener& listener);
