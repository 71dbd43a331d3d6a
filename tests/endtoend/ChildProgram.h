// Runs console programs as a person does, and keeps what they print.
#pragma once

#include "endtoend/ServerFixture.h"

#include <filesystem>
#include <optional>
#include <string>

// What a program left behind. The texts are the bytes as written.
struct ProgramResult
{
    std::optional<DWORD> exitCode; // empty where it could not be started or did not end in time
    std::string output;
    std::string errors;
};

// A program that runs with its output going to files, which no server that it starts can keep open
// against the test as it could a pipe.
class ChildProgram
{
  public:
    explicit ChildProgram(const std::wstring& commandLine);
    ~ChildProgram();
    ChildProgram(const ChildProgram&) = delete;
    ChildProgram& operator=(const ChildProgram&) = delete;

    // Waits for its end; ends it by force after that time.
    ProgramResult Wait(DWORD timeoutMilliseconds);

  private:
    std::filesystem::path m_outputPath;
    std::filesystem::path m_errorPath;
    UniqueHandle m_process;
};

// Runs a program to its end, of at most two minutes.
ProgramResult RunAndRead(const std::wstring& commandLine);
