#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "FaultSession.h"
#include "HttpCall.h"

namespace {

// "./dev faults" tries all; else a tenth, the same one each time, with every row and every operation in it.
bool IsTried(std::size_t row, std::size_t operation) {
    static const bool all = std::getenv("USERAUTH_FAULTS") != nullptr;
    return all || (row + operation) % 10 == 0;
}

}  // namespace

TEST_F(FaultSession, EveryOperationSurvivesEveryFault) {
    int tried = 0;
    int survived = 0;
    const std::vector<Fault> rows = FaultRows();
    const std::vector<FaultedOperation> operations = Operations();
    for (std::size_t i = 0; i < operations.size(); ++i) {
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const bool isMet = IsMetBy(operations[i], rows[row]);
            if (isMet && IsTried(row, i)) {
                ++tried;
                survived += Survives(operations[i], rows[row]) ? 1 : 0;
            }
        }
    }
    std::cout << "fault rows: " << tried << " tried, " << survived << " survived\n";
}

TEST_F(FaultSession, NoReplyCountsBeforeItsLastByte) {
    int cuts = 0;
    int survived = 0;
    const std::vector<FaultedOperation> operations = Operations();
    for (const Fault& row : CutRows()) {
        for (std::size_t i = 0; i < operations.size(); ++i) {
            std::size_t cut = 0;
            do {
                if (cut == 0 || cut + 1 == ReplySize() || IsTried(cut, i)) {
                    ++cuts;
                    survived += Survives(operations[i], row, cut) ? 1 : 0;
                }
            } while (++cut < ReplySize());
        }
    }
    std::cout << "cuts: " << cuts << " tried, " << survived << " survived\n";
}
