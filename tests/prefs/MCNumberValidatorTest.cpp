#include "MCFloatValidator.h"
#include "MCIntegerValidator.h"

#include <gtest/gtest.h>

namespace {

// Each change is checked against the text of the latest accepted edit.
template <typename Validator>
void expectEdits(const char *start, std::initializer_list<std::pair<const char *, const char *>> edits)
{
    Validator validator;
    validator.beginEditing(QString::fromUtf8(start));
    for (const auto &[typed, kept] : edits)
        EXPECT_EQ(validator.textDidChange(QString::fromUtf8(typed)), QString::fromUtf8(kept)) << typed;
}

TEST(MCNumberValidatorTest, FieldsKeepOnlyWhatTheToolsReadAsANumber)
{
    // Digits of another script are no number to the tools.
    expectEdits<MCIntegerValidator>("1", {{"12", "12"}, {"12a", "12"}, {"12.", "12"}, {"1 2", "12"}, {"12\u0663", "12"},
                                          {"", ""}, {"x", ""}});
    // One point; a comma is taken for it.
    expectEdits<MCFloatValidator>("1", {{"1.", "1."}, {"1.2", "1.2"}, {"1.2.", "1.2"}, {"1,2", "1.2"}, {".5", ".5"}, {"", ""}});
    expectEdits<MCFloatValidator>("29.97", {{"29.97x", "29.97"}, {"25", "25"}, {"25..", "25"}});
}

} // namespace
