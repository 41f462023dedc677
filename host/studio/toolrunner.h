// SPDX-License-Identifier: Apache-2.0
#pragma once
// Does for a tool what the host does for its category: the sensor type runs its own programs
// (category 6031), Manage Files opens the selected sensor's file manager, Data Review asks the sensor
// for a data file for the Data Review window, Run Method asks for a method or sequence on the
// instrument (the window runs it), the Method Editor makes or opens methods and sequences through the
// sensor type, Status and the Service Module open their windows, Tune asks, tunes the selected
// instrument and shows its tune reports on the new report; any other host feature is outside the
// studio and says so. A file chosen in Manage Files is handed on.
#include <QString>

#include <functional>
#include <string>

class ISensorInfo;
class ISensorObject;
struct SensorTool;

class ToolRunner {
public:
    struct Outcome {
        enum class Kind {
            RanByModule,            // the sensor type's RunTool ran it
            ProgramFailed,          // the sensor type's RunTool told the operator why it could not
            ManageFilesClosed,      // the Manage Files dialog ran and was closed
            ManageFilesUnavailable, // the module answered without a dialog
            FileChosen,             // Data Review: a file was chosen
            SelectionCancelled,     // the file selection was cancelled (or the module has no dialog)
            MethodChosen,           // Run Method: `file` is the method or sequence to run
            MethodFailed,           // Run Method: the file chosen is not on the instrument
            ShowStatus,             // the window should open the instrument's status window
            ShowService,            // the window should open the instrument's Service Module
            Tuned,                  // the instrument tuned and its reports were shown
            TuneDeclined,           // the operator answered No: nothing was sent
            TuneFailed,             // the instrument could not tune (off line, refused)
            NeedsInstrument,        // the tool works on a sensor and none is selected
            OutOfScope,             // a host feature the studio does not have
            ChooseMethodAction,     // the window should offer the method editor's actions
            HandedToModule,         // a file went to the sensor type's OpenFile or EditMethodOfFile
            ReviewDataFile,         // Data Review: the window should open `file`
        };
        Kind kind;
        QString message;
        std::wstring file; // ReviewDataFile, MethodChosen: the file's full name
    };

    // Told what the studio is waiting for while a tool keeps the instrument busy; an empty text when
    // the wait is over.
    using BusyNotice = std::function<void(const QString& text)>;
    // How long a tune keeps an instrument busy, as the operator is told before it starts.
    static constexpr int kTuneSeconds = 60;

    // `sensor` is the selected instrument's sensor, or null. The caller holds a reference on it.
    static Outcome Run(ISensorInfo& sensorType, const SensorTool& tool, ISensorObject* sensor,
                       const BusyNotice& busy = {});

    enum class MethodAction { NewMethod, NewSequence, Open, DefaultMethods };
    // New method / new sequence through NewFile; Open asks the sensor's file selection dialog (the
    // method folder's filter) and hands the file to OpenFile.
    static Outcome RunMethodEditor(ISensorInfo& sensorType, MethodAction action, ISensorObject* sensor);
    // Hands a chosen file on: a method file to OpenFile; for a data or tune file, after asking, its
    // method to EditMethodOfFile. Other files are left alone (FileChosen).
    static Outcome ReviewFile(ISensorInfo& sensorType, const std::wstring& file);

private:
    static Outcome RunProgram(ISensorInfo& sensorType, const SensorTool& tool);
    static Outcome RunTune(const QString& toolName, ISensorObject* sensor, const BusyNotice& busy);
    static Outcome ManageFiles(ISensorInfo& sensorType, const QString& name, ISensorObject& sensor);
    static Outcome ReviewData(const QString& name, ISensorObject& sensor);
    static Outcome ChooseMethod(const QString& name, ISensorObject& sensor);
};
