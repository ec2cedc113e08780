#pragma once

/// The messages that a process which inspects a plug-in sends to its parent. Each one is a JSON
/// object on one line: it contains members of the report, `activity`, or `reason`.
namespace Host::InspectionProtocol {

/// The next activity of the process, as a clause that follows "while".
constexpr char activity[] = "activity";
/// The activity after the inspection.
constexpr char lastActivity[] = "the program ended";
/// The reason for the verdict, as in a plug-in record.
constexpr char reason[] = "reason";

} // namespace Host::InspectionProtocol
