#pragma once

// Functions that the simulated SDK library exports in addition to the vendor's, for tests and for hosts in any
// language.

#ifdef __cplusplus
extern "C" {
#endif

/** Applies a script while the library is in use. Only the settings named in the script change; its faults replace all
 *  earlier ones. If the list of instruments changes, all instruments start anew, plugged in and closed, but a serial
 *  number keeps its handle.
 *
 *  @param script  JSON as described in docs/simulator.md; relative file names in it refer to the working directory.
 *                 Null restores the state after loading and reads the environment variables again.
 *  @return null on success; otherwise the error message, valid until the next call of this function. A script with an
 *          error changes nothing.
 */
const char* I1PRO3_SimulatorUse(const char* script);

/** Describes the simulation, such as "simulated i1Pro 3 with the ColorChecker Classic chart". Every simulated SDK
 * library exports this function under this name; by it, programs tell a simulation from the vendor's library, which
 * doesn't have it. The recorder forwards it to the recorded library.
 *
 *  @return the description, valid until the script changes; from the recorder, null if the recorded library isn't a
 *          simulation
 */
const char* I1PRO3_SimulatorDescription(void);

#ifdef __cplusplus
}
#endif
