// check and compact: commands on group files, wherever they lie.
#include "compound/compound_file.h"
#include "compound/error.h"
#include "store/damaged_groups.h"
#include "store/storage_access.h"
#include "tool/command.h"
#include "tool/library_arguments.h"
#include "tool/output.h"

#include <algorithm>
#include <filesystem>

namespace tool {
namespace {

using compound::Access;
using compound::Error;
using compound::ErrorCode;
using compound::Finding;

bool isRemark(const Finding& finding) {
    return finding.severity == compound::Severity::Remark;
}

// What is wrong with the bytes of one file. What keeps them from being read is thrown.
std::vector<Finding> findingsOf(const std::filesystem::path& path) {
    const store::Library library = libraryAround(path);
    std::vector<Finding> findings;
    try {
        compound::CompoundFile file = compound::CompoundFile::open(
            store::openLocked(library.disk, path, Access::Read, library.lockWait), Access::Read);
        findings = file.check();
    } catch (const Error& error) {
        if (error.code() != ErrorCode::Damaged && error.code() != ErrorCode::NotCompoundFile) {
            throw;
        }
        return {{"header", error.cause()}};
    }
    const store::LockBudget budget(library.lockWait);
    const bool isSound = std::all_of(findings.begin(), findings.end(), isRemark);
    if (isSound && store::testGroupFile(library, path, budget) == store::GroupFileState::Damaged) {
        findings.push_back({"root", "there is no group of the file's own name"});
    }
    return findings;
}

} // namespace

ExitStatus checkFiles(const Invocation& invocation) {
    Table table({"file", "where", "what"});
    ExitStatus status = ExitStatus::Done;
    for (std::size_t i = 0; i + 1 < invocation.arguments.words.size(); ++i) {
        const std::string& file = invocation.argument(i);
        try {
            for (const Finding& finding : findingsOf(file)) {
                table.addRow(
                    {Cell::text(file), Cell::text(finding.where), Cell::text(finding.what)});
                if (!isRemark(finding)) {
                    status = ExitStatus::Failed;
                }
            }
        } catch (const Error& error) {
            complain(invocation.console, error.what());
            status = ExitStatus::Failed;
        }
    }
    table.print(invocation.console.out, invocation.arguments);
    return status;
}

ExitStatus compactFile(const Invocation& invocation) {
    const std::filesystem::path path = invocation.argument(0);
    const store::Library library = libraryAround(path);
    const auto sizeNow = [&] {
        return store::openLocked(library.disk, path, Access::Read, library.lockWait)->size();
    };
    const std::uint64_t before = sizeNow();
    store::compactGroupFile(library, path);
    Table table({"before", "after"});
    table.addRow({Cell::number(before), Cell::number(sizeNow())});
    table.printOne(invocation.console.out, invocation.arguments);
    return ExitStatus::Done;
}

} // namespace tool
