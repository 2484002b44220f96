#include "Proc/ProcessingError.h"

#include <utility>

namespace Tavrin {
namespace Proc {

ProcessingError::ProcessingError(TranscodingErrors code, std::string sourceFile, std::string function, int line,
                                 std::string message, std::string subject)
    : m_code(code), m_sourceFile(std::move(sourceFile)), m_function(std::move(function)), m_line(line),
      m_message(std::move(message)), m_subject(std::move(subject))
{
}

ProcessingError::~ProcessingError() = default;

int ProcessingError::code() const
{
    return m_code;
}

std::string ProcessingError::message() const
{
    return m_message;
}

std::string ProcessingError::subject() const
{
    return m_subject;
}

std::string ProcessingError::sourceFile() const
{
    return m_sourceFile;
}

std::string ProcessingError::function() const
{
    return m_function;
}

int ProcessingError::line() const
{
    return m_line;
}

std::string ProcessingError::toString() const
{
    std::string text = m_message;
    if (!m_subject.empty())
        text += " (" + m_subject + ")";
    text += " [code " + std::to_string(m_code);
    if (!m_sourceFile.empty())
        text += " at " + m_sourceFile + ":" + std::to_string(m_line);
    if (!m_function.empty())
        text += " " + m_function;
    text += "]";
    return text;
}

} // namespace Proc
} // namespace Tavrin
