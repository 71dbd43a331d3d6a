// Owners of what a type library tells of its types, for as long as it is read.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstdio>
#include <stdexcept>

// Throws std::runtime_error where the call failed.
inline void Check(HRESULT result, const char* what)
{
    if (SUCCEEDED(result))
        return;
    char text[128];
    std::snprintf(text, sizeof text, "%s: %08lx", what, static_cast<unsigned long>(result));
    throw std::runtime_error(text);
}

// The attribute records belong to the type information and go back to it.
class TypeAttributes
{
  public:
    explicit TypeAttributes(ITypeInfo& info) : m_info(info)
    {
        Check(info.GetTypeAttr(&m_value), "GetTypeAttr");
    }
    ~TypeAttributes() { m_info.ReleaseTypeAttr(m_value); }
    TypeAttributes(const TypeAttributes&) = delete;
    TypeAttributes& operator=(const TypeAttributes&) = delete;
    const TYPEATTR* operator->() const { return m_value; }

  private:
    ITypeInfo& m_info;
    TYPEATTR* m_value = nullptr;
};

class VariableDescription
{
  public:
    VariableDescription(ITypeInfo& info, UINT index) : m_info(info)
    {
        Check(info.GetVarDesc(index, &m_value), "GetVarDesc");
    }
    ~VariableDescription() { m_info.ReleaseVarDesc(m_value); }
    VariableDescription(const VariableDescription&) = delete;
    VariableDescription& operator=(const VariableDescription&) = delete;
    const VARDESC* operator->() const { return m_value; }

  private:
    ITypeInfo& m_info;
    VARDESC* m_value = nullptr;
};

class FunctionDescription
{
  public:
    FunctionDescription(ITypeInfo& info, UINT index) : m_info(info)
    {
        Check(info.GetFuncDesc(index, &m_value), "GetFuncDesc");
    }
    ~FunctionDescription() { m_info.ReleaseFuncDesc(m_value); }
    FunctionDescription(const FunctionDescription&) = delete;
    FunctionDescription& operator=(const FunctionDescription&) = delete;
    const FUNCDESC* operator->() const { return m_value; }

  private:
    ITypeInfo& m_info;
    FUNCDESC* m_value = nullptr;
};
