// FS_FshLegacy: forwards each operation to the table slot of the same role;
// see the header for the three forms.
#include <qbfsys/file_hand.h>
#include <qbfsys/fs_fsh_legacy.h>
#include <qbfsys/handles.h>
#include <qbhost/zprintf.h>

#include "fs_dispatch.h"

namespace {

int line_of(int operation) { return FS_FSHLEGACY_LINE_BASE + operation; }

FS_STATUS bad_parameter(int line, FS_STATUS result) {
  QB_Zprintf(0, L"FS_FshLegacy: Bad Parameter at line number %d", line);
  return result;
}


_FUNC_LIST const* table_of(FSYS_HAND_STRUCT const* hand) {
  return hand == nullptr ? nullptr : hand->funcTable;
}
_FUNC_LIST const* table_of(_FILE_HAND_STRUCT const* obj) {
  return obj == nullptr ? nullptr : table_of(obj->fsysHand);
}

}  // namespace

FS_FshLegacy::~FS_FshLegacy() = default;

FS_STATUS FS_FshLegacy::CloseSys(FSYS_HAND_STRUCT* hand) {
  FS_STATUS result = FS_SUCCESS;
  if (hand != nullptr) {
    if (hand->funcTable != nullptr && hand->funcTable->CloseSys != nullptr)
      result = hand->funcTable->CloseSys(hand);
    hand->adapter = nullptr;
  }
  delete this;
  return result;
}

FS_STATUS FS_FshLegacy::AttachToDLE(FSYS_HAND_STRUCT* hand, GENERIC_DLE* dle, wchar_t* user,
                                    wchar_t* password) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->AttachToDLE == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->AttachToDLE(hand, dle, user, password);  // slot 15
}

FS_STATUS FS_FshLegacy::DetachDLE(FSYS_HAND_STRUCT* hand, void* arg, void** result) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->DetachDLE == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->DetachDLE(hand, arg, result);  // slot 16
}

FS_STATUS FS_FshLegacy::InitMakeData(FSYS_HAND_STRUCT* hand, short size, _CREATE_DBLK* request) {
  if (hand == nullptr || request == nullptr) return bad_parameter(line_of(5), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->InitMakeData == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->InitMakeData(hand, size, request);  // slot 10
}

FS_STATUS FS_FshLegacy::IsBlkComplete(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(6), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->IsBlkComplete == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->IsBlkComplete(hand, blk);  // slot 11
}

FS_STATUS FS_FshLegacy::CompleteBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                                    unsigned int* value, STREAM_INFO* header) {
  if (hand == nullptr || blk == nullptr || buffer == nullptr || value == nullptr ||
      header == nullptr)
    return bad_parameter(line_of(7), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->CompleteBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->CompleteBLK(hand, blk, buffer, value, header);  // slot 12
}

FS_STATUS FS_FshLegacy::DupBlk(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2) {
  if (hand == nullptr || blk == nullptr || blk2 == nullptr)
    return bad_parameter(line_of(8), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->DupBlk == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->DupBlk(hand, blk, blk2);  // slot 13
}

FS_STATUS FS_FshLegacy::ReleaseBlk(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(9), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ReleaseBlk == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ReleaseBlk(hand, blk);  // slot 14
}

FS_STATUS FS_FshLegacy::ProcessDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ProcessDDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ProcessDDB(hand, blk);  // slot 17
}

FS_STATUS FS_FshLegacy::GetCurrentDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(11), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetCurrentDDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetCurrentDDB(hand, blk);  // slot 18
}

FS_STATUS FS_FshLegacy::GetCurrentPath(FSYS_HAND_STRUCT* hand, wchar_t* text, short* size) {
  if (hand == nullptr || text == nullptr || size == nullptr)
    return bad_parameter(line_of(12), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetCurrentPath == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetCurrentPath(hand, text, size);  // slot 19
}

FS_STATUS FS_FshLegacy::ChangeDir(FSYS_HAND_STRUCT* hand, wchar_t* text, short size) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ChangeDir == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ChangeDir(hand, text, size);  // slot 20
}

FS_STATUS FS_FshLegacy::ChangeDirUp(FSYS_HAND_STRUCT* hand) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ChangeDirUp == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ChangeDirUp(hand);  // slot 21
}

FS_STATUS FS_FshLegacy::CreateObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* text,
                                  RESTORE_SEMANTICS semantics) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->CreateObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->CreateObj(hand, blk, text, semantics);  // slot 22
}

FS_STATUS FS_FshLegacy::OpenObj(FSYS_HAND_STRUCT* hand, _FILE_HAND_STRUCT** out, DBLK* blk,
                                OPEN_MODE mode) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->OpenObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->OpenObj(hand, out, blk, mode);  // slot 23
}

FS_STATUS FS_FshLegacy::SeekObj(_FILE_HAND_STRUCT* obj, unsigned int* value) {
  _FUNC_LIST const* table = table_of(obj);
  if (table == nullptr || table->SeekObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SeekObj(obj, value);  // slot 24
}

FS_STATUS FS_FshLegacy::ReadObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* value,
                                unsigned int* value2, STREAM_INFO* header) {
  _FUNC_LIST const* table = table_of(obj);
  if (table == nullptr || table->ReadObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ReadObj(obj, buffer, value, value2, header);  // slot 25
}

FS_STATUS FS_FshLegacy::WriteObj(_FILE_HAND_STRUCT* obj, unsigned char* buffer, unsigned int* value,
                                 unsigned int* value2, STREAM_INFO* header) {
  _FUNC_LIST const* table = table_of(obj);
  if (table == nullptr || table->WriteObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->WriteObj(obj, buffer, value, value2, header);  // slot 26
}

FS_STATUS FS_FshLegacy::CloseObj(_FILE_HAND_STRUCT* obj, void** result, void** result2) {
  _FUNC_LIST const* table = table_of(obj);
  if (table == nullptr || table->CloseObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->CloseObj(obj, result, result2);  // slot 27
}

FS_STATUS FS_FshLegacy::DeleteObj(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->DeleteObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->DeleteObj(hand, blk);  // slot 28
}

FS_STATUS FS_FshLegacy::GetObjInfo(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetObjInfo == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetObjInfo(hand, blk);  // slot 29
}

FS_STATUS FS_FshLegacy::FindFirstObj(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                                     unsigned short flags) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->FindFirstObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->FindFirstObj(hand, blk, text, flags);  // slot 30
}

FS_STATUS FS_FshLegacy::FindNextObj(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->FindNextObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->FindNextObj(hand, blk);  // slot 31
}

FS_STATUS FS_FshLegacy::PushMinDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->PushMinDDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->PushMinDDB(hand, blk);  // slot 32
}

FS_STATUS FS_FshLegacy::MakePushDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* value,
                                     void const* arg) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->MakePushDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->MakePushDBLK(hand, blk, value, arg);  // slot 66
}

FS_STATUS FS_FshLegacy::PopMinDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->PopMinDDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->PopMinDDB(hand, blk);  // slot 33
}

FS_STATUS FS_FshLegacy::GetSpecialDBLKS(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int number,
                                        int number2) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetSpecialDBLKS == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetSpecialDBLKS(hand, blk, number, number2);  // slot 34
}

FS_STATUS FS_FshLegacy::ModName(FSYS_HAND_STRUCT* hand, int number, DBLK* blk, wchar_t* text,
                                short* size) {
  if (hand == nullptr || blk == nullptr || text == nullptr || size == nullptr)
    return bad_parameter(line_of(29), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ModName == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ModName(hand, number, blk, text, size);  // slot 35
}

FS_STATUS FS_FshLegacy::GetOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text, bool flag) {
  if (hand == nullptr || blk == nullptr || text == nullptr)
    return bad_parameter(line_of(30), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetOSName == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetOSName(hand, blk, text, flag);  // slot 36
}

FS_STATUS FS_FshLegacy::GetCDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr)
    return bad_parameter(line_of(31), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetCDateDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetCDateDBLK(hand, blk, date);  // slot 37
}

FS_STATUS FS_FshLegacy::GetMDateDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr)
    return bad_parameter(line_of(32), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetMDateDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetMDateDBLK(hand, blk, date);  // slot 38
}

FS_STATUS FS_FshLegacy::ModBDateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                                     _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr)
    return bad_parameter(line_of(33), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ModBDateDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ModBDateDBLK(hand, number, blk, date);  // slot 39
}

FS_STATUS FS_FshLegacy::ModADateDBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                                     _DATE_TIME* date) {
  if (hand == nullptr || blk == nullptr || date == nullptr)
    return bad_parameter(line_of(34), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ModADateDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ModADateDBLK(hand, number, blk, date);  // slot 40
}

FS_STATUS FS_FshLegacy::GetDisplaySizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(35), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetDisplaySizeDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetDisplaySizeDBLK(hand, blk);  // slot 41
}

FS_STATUS FS_FshLegacy::ModAttrib1DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                                       unsigned int* value) {
  if (hand == nullptr || blk == nullptr || value == nullptr)
    return bad_parameter(line_of(36), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ModAttrib1DBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ModAttrib1DBLK(hand, number, blk, value);  // slot 42
}

FS_STATUS FS_FshLegacy::ModAttrib2DBLK(FSYS_HAND_STRUCT* hand, int number, DBLK* blk,
                                       unsigned int* value) {
  if (hand == nullptr || blk == nullptr || value == nullptr)
    return bad_parameter(line_of(37), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ModAttrib2DBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ModAttrib2DBLK(hand, number, blk, value);  // slot 43
}

FS_STATUS FS_FshLegacy::GetFileVerFDB(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned int* value) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetFileVerFDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetFileVerFDB(hand, blk, value);  // slot 44
}

FS_STATUS FS_FshLegacy::GetObjTypeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, OBJECT_TYPE* type) {
  if (hand == nullptr || blk == nullptr || type == nullptr)
    return bad_parameter(line_of(39), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetObjTypeDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetObjTypeDBLK(hand, blk, type);  // slot 45
}

FS_STATUS FS_FshLegacy::SizeofName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(40), 0);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SizeofName == nullptr) return FS_ERR_UNIMPLEMENTED;
  return fsys::narrow_size(table->SizeofName(hand, blk, flag));  // slot 46
}

FS_STATUS FS_FshLegacy::SizeofOSName(FSYS_HAND_STRUCT* hand, DBLK* blk, bool flag) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(41), 0);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SizeofOSName == nullptr) return FS_ERR_UNIMPLEMENTED;
  return fsys::narrow_size(table->SizeofOSName(hand, blk, flag));  // slot 47
}

FS_STATUS FS_FshLegacy::SizeofQbdsInfo(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(42), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SizeofOSInfo == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SizeofOSInfo(hand, blk);  // slot 48
}

FS_STATUS FS_FshLegacy::GetQbdsInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer,
                                        short* size) {
  if (hand == nullptr || blk == nullptr || buffer == nullptr || size == nullptr)
    return bad_parameter(line_of(43), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetOS_InfoDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetOS_InfoDBLK(hand, blk, buffer, size);  // slot 49
}

FS_STATUS FS_FshLegacy::GetActualSizeDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetActualSizeDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return fsys::narrow_size(table->GetActualSizeDBLK(hand, blk));  // slot 50
}

FS_STATUS FS_FshLegacy::InitializeGOS(FSYS_HAND_STRUCT* hand, _GOS* gos) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->InitializeGOS == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->InitializeGOS(hand, gos);  // slot 51
}

FS_STATUS FS_FshLegacy::CreateGenFDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) {
  if (hand == nullptr || data == nullptr) return bad_parameter(line_of(46), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->CreateGenFDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->CreateGenFDB(hand, data);  // slot 52
}

FS_STATUS FS_FshLegacy::CreateGenDDB(FSYS_HAND_STRUCT* hand, _GEN_DBLK_DATA* data) {
  if (hand == nullptr || data == nullptr) return bad_parameter(line_of(47), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->CreateGenDDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->CreateGenDDB(hand, data);  // slot 53
}

FS_STATUS FS_FshLegacy::CreateGenDBLK(FSYS_HAND_STRUCT* hand, unsigned int number,
                                      _CREATE_DBLK* request) {
  if (hand == nullptr || request == nullptr)
    return bad_parameter(line_of(48), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->CreateDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->CreateDBLK(hand, number, request);  // slot 54
}

FS_STATUS FS_FshLegacy::ChangeIntoDDB(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->ChangeIntoDDB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->ChangeIntoDDB(hand, blk);  // slot 55
}

FS_STATUS FS_FshLegacy::SpecExcludeObj(FSYS_HAND_STRUCT* hand, DBLK* blk, DBLK* blk2,
                                       unsigned int number) {
  if (hand == nullptr || blk == nullptr || blk2 == nullptr)
    return bad_parameter(line_of(50), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SpecExcludeObj == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SpecExcludeObj(hand, blk, blk2, number);  // slot 56
}

FS_STATUS FS_FshLegacy::FindObjClose(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->FindObjClose == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->FindObjClose(hand, blk);  // slot 57
}

FS_STATUS FS_FshLegacy::GeneratedErrorLog(FSYS_HAND_STRUCT* hand, void** result, wchar_t* text,
                                          unsigned int number, unsigned int* value) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GeneratedErrorLog == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GeneratedErrorLog(hand, result, text, number, value);  // slot 59
}

FS_STATUS FS_FshLegacy::GetDBInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, unsigned char* buffer) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetDBInfoDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetDBInfoDBLK(hand, blk, buffer);  // slot 60
}

FS_STATUS FS_FshLegacy::SizeofDBInfoDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SizeofDBInfoDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SizeofDBInfoDBLK(hand, blk);  // slot 61
}

FS_STATUS FS_FshLegacy::PrePostProc(FSYS_HAND_STRUCT* hand, DBLK* blk, _PREPOST* prepost) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->PrePostProc == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->PrePostProc(hand, blk, prepost);  // slot 62
}

FS_STATUS FS_FshLegacy::GetLastErrorMessage(FSYS_HAND_STRUCT* hand, wchar_t* text,
                                            unsigned int number) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetLastErrorMessage == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetLastErrorMessage(hand, text, number);  // slot 70
}

FS_STATUS FS_FshLegacy::SetLastErrorMessage(FSYS_HAND_STRUCT* hand, wchar_t const* text) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SetLastErrorMessage == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SetLastErrorMessage(hand, text);  // slot 71
}

FS_STATUS FS_FshLegacy::GetFinalSay(FSYS_HAND_STRUCT* hand, unsigned int* value, long* code,
                                    wchar_t* text, unsigned int number, wchar_t* text2,
                                    unsigned int number2) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetFinalSay == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetFinalSay(hand, value, code, text, number, text2, number2);  // slot 72
}

FS_STATUS FS_FshLegacy::SetFinalSay(FSYS_HAND_STRUCT* hand, unsigned int number, long code,
                                    wchar_t* text, wchar_t* text2) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SetFinalSay == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SetFinalSay(hand, number, code, text, text2);  // slot 73
}

FS_STATUS FS_FshLegacy::GetBackupPriority(FSYS_HAND_STRUCT* hand, wchar_t const* text,
                                          unsigned long flags) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetBackupPriority == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetBackupPriority(hand, text, flags);  // slot 74
}

FS_STATUS FS_FshLegacy::EnumExcludedFiles(FSYS_HAND_STRUCT* hand, int* cursor, wcstring& name,
                                          bool* flag, EXCLUDE_TYPE& type) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->EnumExcludedFiles == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->EnumExcludedFiles(hand, cursor, name, flag, type);  // slot 75
}

FS_STATUS FS_FshLegacy::SizeofVolumeQbdsInfoInVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SizeofVolumeQbdsInfoInVCB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SizeofVolumeQbdsInfoInVCB(hand, vcb);  // slot 76
}

FS_STATUS FS_FshLegacy::GetVolumeQbdsInfoFromVCB(FSYS_HAND_STRUCT* hand, _ZRTSCB* vcb,
                                                 unsigned char* buffer) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetVolumeQbdsInfoFromVCB == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetVolumeQbdsInfoFromVCB(hand, vcb, buffer);  // slot 77
}

FS_STATUS FS_FshLegacy::CompareFileNames(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->CompareFileNames == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->CompareFileNames(hand, blk, text);  // slot 80
}

FS_STATUS FS_FshLegacy::GetMountPointType(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetMountPointType == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetMountPointType(hand, blk);  // slot 82
}

FS_STATUS FS_FshLegacy::GetSpecRestoreObjects(FSYS_HAND_STRUCT* hand, wcstring& name,
                                              wcstring& name2, bool flag, bool* flag2, bool* flag3,
                                              unsigned int number) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetSpecRestoreObjects == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetSpecRestoreObjects(hand, name, name2, flag, flag2, flag3, number);  // slot 83
}

FS_STATUS FS_FshLegacy::GetHardLinkPathAndName(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t* text,
                                               short* size) {
  if (hand == nullptr || blk == nullptr || text == nullptr || size == nullptr)
    return bad_parameter(line_of(67), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetHardLinkPathAndName == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetHardLinkPathAndName(hand, blk, text, size);  // slot 86
}

FS_STATUS FS_FshLegacy::EnumDependentVolumes(FSYS_HAND_STRUCT* hand, FS_WCSTRING_INSERTER out) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->EnumDependentVolumes == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->EnumDependentVolumes(hand, out);  // slot 87
}

FS_STATUS FS_FshLegacy::AddToSnapshotSet(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                         FS_WCSTRING_INSERTER out) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->AddToSnapshotSet == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->AddToSnapshotSet(hand, blk, out);  // slot 88
}

FS_STATUS FS_FshLegacy::SnapshotNotification(FSYS_HAND_STRUCT* hand,
                                             SNAPSHOT_NOTIFICATION::notify_type kind) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->SnapshotNotification == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->SnapshotNotification(hand, kind);  // slot 89
}

FS_STATUS FS_FshLegacy::GetExtendedErrorInfo(FSYS_HAND_STRUCT* hand, FS_EXT_ERR_ACTION* action,
                                             unsigned int* value, wchar_t** message) {
  if (hand == nullptr || action == nullptr || value == nullptr || message == nullptr)
    return bad_parameter(line_of(71), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetExtendedErrorInfo == nullptr) {
    *action = FS_EXT_ERR_ACTION_NONE;
    *value = 0;
    *message = nullptr;
    return FS_SUCCESS;
  }
  return table->GetExtendedErrorInfo(hand, action, value, message);  // slot 90
}

FS_STATUS FS_FshLegacy::EnumSpecFiles(FSYS_HAND_STRUCT* hand, FS_WCSTRING_VECTOR& names) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->EnumSpecFiles == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->EnumSpecFiles(hand, names);  // slot 92
}

FS_STATUS FS_FshLegacy::GetVolb(FSYS_HAND_STRUCT* hand, DBLK* blk) {
  if (hand == nullptr || blk == nullptr) return bad_parameter(line_of(73), FS_ERR_BAD_PARAMETER);
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetVolb == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetVolb(hand, blk);  // slot 93
}

FS_STATUS FS_FshLegacy::GenericInfo(FSYS_HAND_STRUCT* hand, unsigned int number,
                                    unsigned int number2, unsigned char* buffer) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GenericInfo == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GenericInfo(hand, number, number2, buffer);  // slot 94
}

FS_STATUS FS_FshLegacy::FillOutDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, wchar_t const* text,
                                    unsigned int number, unsigned long long const& id) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->FillOutDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->FillOutDBLK(hand, blk, text, number, id);  // slot 96
}

FS_STATUS FS_FshLegacy::GetShortNameFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk, wcstring& name) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetShortNameFromDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetShortNameFromDBLK(hand, blk, name);  // slot 97
}

FS_STATUS FS_FshLegacy::GetMountPointInfo(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                          FS_MOUNTPOINT_INFO& info) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetMountPointInfo == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetMountPointInfo(hand, blk, info);  // slot 98
}

FS_STATUS FS_FshLegacy::GetLocalDeviceName(FSYS_HAND_STRUCT* hand, wcstring& name) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetLocalDeviceName == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetLocalDeviceName(hand, name);  // slot 99
}

FS_STATUS FS_FshLegacy::GetDeviceTime(FSYS_HAND_STRUCT* hand, _DATE_TIME* date, _DATE_TIME* date2) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetDeviceTime == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetDeviceTime(hand, date, date2);  // slot 100
}

FS_STATUS FS_FshLegacy::GetOffHostFileList(
    _FILE_HAND_STRUCT* obj, FS_OFF_HOST_FILE_LIST** list, FS_OFF_HOST_FILE_LIST** list2,
    _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_OPER_TYPE* operation,
    _OFF_HOST_FILELIST_OPER_DATA_TYPES::FS_OH_FL_DATA_TYPE* data_type, void** result,
    unsigned int* value) {
  _FUNC_LIST const* table = table_of(obj);
  if (table == nullptr || table->GetOffHostFileList == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetOffHostFileList(obj, list, list2, operation, data_type, result,
                                   value);  // slot 102
}

FS_STATUS FS_FshLegacy::PerformChecks(_FILE_HAND_STRUCT* obj, _PERFORM_CHECKS::OPERATION_TYPE kind,
                                      _PERFORM_CHECKS::OPERATION_SUB_TYPE sub_kind) {
  _FUNC_LIST const* table = table_of(obj);
  if (table == nullptr || table->PerformChecks == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->PerformChecks(obj, kind, sub_kind);  // slot 103
}

FS_STATUS FS_FshLegacy::DoCommand(FSYS_HAND_STRUCT* hand, FS_CMD command, void* arg, void* arg2) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->DoCommand == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->DoCommand(hand, command, arg, arg2);  // slot 104
}

FS_STATUS FS_FshLegacy::GetExtendedAttribFromDBLK(FSYS_HAND_STRUCT* hand, DBLK* blk,
                                                  unsigned int number, void* arg,
                                                  unsigned int* value) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetExtendedAttribFromDBLK == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetExtendedAttribFromDBLK(hand, blk, number, arg, value);  // slot 107
}

FS_STATUS FS_FshLegacy::GetEquivalentRealPath(FSYS_HAND_STRUCT* hand, wchar_t const* text,
                                              unsigned int number, wcstring* name, long* code) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetEquivalentRealPath == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetEquivalentRealPath(hand, text, number, name, code);  // slot 110
}

FS_STATUS FS_FshLegacy::GetVirtualVolumeDetails(FSYS_HAND_STRUCT* hand, unsigned char** buffer,
                                                unsigned int* value, _VIRTUAL_VOLUME_INFO** info) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetVirtualVolumeDetails == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetVirtualVolumeDetails(hand, buffer, value, info);  // slot 111
}

FS_STATUS FS_FshLegacy::GetLastErrorAndMessage(FSYS_HAND_STRUCT* hand, wchar_t* text,
                                               unsigned int number, long* code) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->GetLastErrorAndMessage == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->GetLastErrorAndMessage(hand, text, number, code);  // slot 112
}

FS_STATUS FS_FshLegacy::DirectImageInterface(FSYS_HAND_STRUCT* hand, wchar_t const* text,
                                             wchar_t const* text2, _DII_CONTROL_TYPE control,
                                             unsigned int number, FS_OFF_HOST_FILE_LIST** list,
                                             FS_OFF_HOST_FILE_LIST** list2, wchar_t* text3,
                                             unsigned int& size) {
  _FUNC_LIST const* table = table_of(hand);
  if (table == nullptr || table->DirectImageInterface == nullptr) return FS_ERR_UNIMPLEMENTED;
  return table->DirectImageInterface(hand, text, text2, control, number, list, list2, text3,
                                     size);  // slot 114
}
