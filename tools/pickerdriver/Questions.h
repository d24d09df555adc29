// What the transforms ask after the picker has closed: passwords, messages, the receipt.
#pragma once

#include <windows.h>

#include "tools/pickerdriver/CommandLine.h"

namespace pickerdriver {

// Answers until the page has its files; without a page, until the receipt of the ticked transform
// has been seen. A PDF's password is typed once if the task has one, and otherwise the file stays
// as it is, as with every question. Does nothing if no transform is ticked. Throws Failure when the
// task's limit passes without anything to answer, and when the page got files without a receipt.
void AnswerQuestions(const Task& task, HANDLE program);

} // namespace pickerdriver
