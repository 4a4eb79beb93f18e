// Clean files to build tests from, and one call that gives the messages of a read.
//
//     EXPECT_EQ(Messages(Ibs(Model("M", "[Driver Schedule]\nN 1n NA 2n NA\n"))),
//               Lines{"WARNING - Model 'M': The [Driver_Schedule] has only one model defined"});

#pragma once

#include "ibis/interface/talibis.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct ibis;

using Lines = std::vector<std::string>;

/// A folder of its own for each test process, removed at its end.
const std::string& TestFolder();
/// Writes a file into the test folder and gives its path.
std::string WriteTestFile(std::string_view name, std::string_view content);

/// What a fresh process would say: every stored text without its trailing newline, in order. The file is
/// written as `name` and read by the kind that its extension tells.
Lines Messages(std::string_view content, std::string_view name = "t.ibs");
/// What is stored now, for a test that calls a part of the parser by itself.
Lines StoredMessages();
/// The same as `Messages` for a file that is there already.
Lines MessagesOfFile(const std::string& path, ibis_file_type type);
/// Keeps the totals that a nested read of a board's component prints out of a test's output.
class QuietTotals
{
  public:
    QuietTotals();
    ~QuietTotals();
    QuietTotals(const QuietTotals&) = delete;
    QuietTotals& operator=(const QuietTotals&) = delete;

  private:
    std::FILE* mpFile;
};
/// Only the messages that hold `part`.
Lines MessagesWith(std::string_view part, std::string_view content, std::string_view name = "t.ibs");
/// What calls of the parser core say that belong to no file: as on line 0 of a file of version 5.
Lines MessagesOf(const std::function<void()>& calls);
/// The lines with folded messages on one line, for tests that are not about folding.
Lines Unfolded(Lines lines);
/// The handle of the file that was read, for queries; fails the test if there is none.
TalIbis* ReadHandle(std::string_view content, std::string_view name = "t.ibs");

/// The root of a file that was read, for a test that looks at its records or changes them. No message is
/// stored.
ibis* RootOf(std::string_view content);

/// `text` with the first string of each pair, which must be there, replaced by the second one.
std::string Edit(std::string text, const std::vector<std::pair<std::string, std::string>>& edits);
/// [IBIS Ver], [File Name] and [File Rev].
std::string Header(std::string_view version = "5.1", std::string_view fileName = "t.ibs");
/// [Component] with [Manufacturer], [Package] and a [Pin] table with these lines; `extra` follows.
std::string Component(std::string_view name, std::string_view pinLines, std::string_view extra = "");
/// A clean receiver of type Input with `extra` keywords behind its subparameters.
std::string Model(std::string_view name, std::string_view extra = "");
/// A clean driver of type Output (50 Ohm, 3.3 V) with `extra` keywords behind its tables and ramp.
std::string Driver(std::string_view name, std::string_view extra = "");
/// A whole file: header, a component with one pin for each [Model] and [Model Selector] of `body`, `body`,
/// [End].
std::string Ibs(std::string_view body, std::string_view version = "5.1",
                std::string_view componentExtra = "");
/// A whole file with nothing but header, `body` and [End].
std::string Bare(std::string_view body, std::string_view version = "5.1");
