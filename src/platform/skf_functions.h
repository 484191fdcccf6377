// The functions of a token library that the provider imports: result, name, parameters.
//
// Define TEMBRA_IMPORT(result, name, parameters) before including this file, which has no include
// guard, and undefine it afterwards. Declarations, import libraries, export lists, fault plans and
// test doubles are made from this table; CMake reads it too, so each function is on one line.
// clang-format off

// A name list is a sequence of NUL-terminated names with one more NUL at its end; *pulSize holds the
// capacity on entry and the length of the list on return.
TEMBRA_IMPORT(ULONG, SKF_EnumDev, (BOOL bPresent, LPSTR szNameList, ULONG *pulSize))
TEMBRA_IMPORT(ULONG, SKF_ConnectDev, (LPSTR szName, DEVHANDLE *phDev))
TEMBRA_IMPORT(ULONG, SKF_DisConnectDev, (DEVHANDLE hDev))
// In milliseconds; 0xFFFFFFFF waits without limit.
TEMBRA_IMPORT(ULONG, SKF_LockDev, (DEVHANDLE hDev, ULONG ulTimeOut))
TEMBRA_IMPORT(ULONG, SKF_UnlockDev, (DEVHANDLE hDev))
TEMBRA_IMPORT(ULONG, SKF_GetDevInfo, (DEVHANDLE hDev, DEVINFO *pDevInfo))

TEMBRA_IMPORT(ULONG, SKF_EnumApplication, (DEVHANDLE hDev, LPSTR szAppName, ULONG *pulSize))
TEMBRA_IMPORT(ULONG, SKF_OpenApplication, (DEVHANDLE hDev, LPSTR szAppName, HAPPLICATION *phApplication))
TEMBRA_IMPORT(ULONG, SKF_CloseApplication, (HAPPLICATION hApplication))
TEMBRA_IMPORT(ULONG, SKF_ClearSecureState, (HAPPLICATION hApplication))

TEMBRA_IMPORT(ULONG, SKF_EnumContainer, (HAPPLICATION hApplication, LPSTR szContainerName, ULONG *pulSize))
TEMBRA_IMPORT(ULONG, SKF_CreateContainer, (HAPPLICATION hApplication, LPSTR szContainerName, HCONTAINER *phContainer))
TEMBRA_IMPORT(ULONG, SKF_DeleteContainer, (HAPPLICATION hApplication, LPSTR szContainerName))
TEMBRA_IMPORT(ULONG, SKF_OpenContainer, (HAPPLICATION hApplication, LPSTR szContainerName, HCONTAINER *phContainer))
TEMBRA_IMPORT(ULONG, SKF_CloseContainer, (HCONTAINER hContainer))
TEMBRA_IMPORT(ULONG, SKF_GetContainerType, (HCONTAINER hContainer, ULONG *pulContainerType))

// bSignFlag: non-zero selects the signature key or certificate, 0 the encryption key or certificate.
TEMBRA_IMPORT(ULONG, SKF_ExportPublicKey, (HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbBlob, ULONG *pulBlobLen))
TEMBRA_IMPORT(ULONG, SKF_ExportCertificate, (HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbCert, ULONG *pulCertLen))
TEMBRA_IMPORT(ULONG, SKF_ImportCertificate, (HCONTAINER hContainer, BOOL bSignFlag, BYTE *pbCert, ULONG ulCertLen))

TEMBRA_IMPORT(ULONG, SKF_GenRSAKeyPair, (HCONTAINER hContainer, ULONG ulBitsLen, RSAPUBLICKEYBLOB *pBlob))
TEMBRA_IMPORT(ULONG, SKF_GenECCKeyPair, (HCONTAINER hContainer, ULONG ulAlgId, ECCPUBLICKEYBLOB *pBlob))
TEMBRA_IMPORT(ULONG, SKF_ImportECCKeyPair, (HCONTAINER hContainer, ENVELOPEDKEYBLOB *pEnvelopedKeyBlob))
TEMBRA_IMPORT(ULONG, SKF_ImportRSAKeyPair, (HCONTAINER hContainer, ULONG ulSymAlgId, BYTE *pbWrappedKey, ULONG ulWrappedKeyLen, BYTE *pbEncryptedData, ULONG ulEncryptedDataLen))

TEMBRA_IMPORT(ULONG, SKF_RSASignData, (HCONTAINER hContainer, BYTE *pbData, ULONG ulDataLen, BYTE *pbSignature, ULONG *pulSignLen))
TEMBRA_IMPORT(ULONG, SKF_ECCSignData, (HCONTAINER hContainer, BYTE *pbData, ULONG ulDataLen, ECCSIGNATUREBLOB *pSignature))

// In the vendor's form: bSignKey is 0 for the encryption key, 1 for the signature key.
TEMBRA_IMPORT(ULONG, SKF_RSADecrypt, (HCONTAINER hContainer, BOOL bSignKey, BYTE *pbIn, ULONG ulInLen, BYTE *pbOut, ULONG *pulOutLen))
TEMBRA_IMPORT(ULONG, SKF_ECCDecrypt, (HCONTAINER hContainer, BOOL bSignKey, ECCCIPHERBLOB *pCipher, BYTE *pbOut, ULONG *pulOutLen))

TEMBRA_IMPORT(ULONG, SKF_VerifyPIN, (HAPPLICATION hApplication, ULONG ulPINType, LPSTR szPIN, ULONG *pulRetryCount))
TEMBRA_IMPORT(ULONG, SKF_ChangePIN, (HAPPLICATION hApplication, ULONG ulPINType, LPSTR szOldPin, LPSTR szNewPin, ULONG *pulRetryCount))
TEMBRA_IMPORT(ULONG, SKF_UnblockPIN, (HAPPLICATION hApplication, LPSTR szAdminPIN, LPSTR szNewUserPIN, ULONG *pulRetryCount))
TEMBRA_IMPORT(ULONG, SKF_GetPINInfo, (HAPPLICATION hApplication, ULONG ulPINType, ULONG *pulMaxRetryCount, ULONG *pulRemainRetryCount, BOOL *pbDefaultPin))

TEMBRA_IMPORT(ULONG, SKF_GenRandom, (DEVHANDLE hDev, BYTE *pbRandom, ULONG ulRandomLen))
TEMBRA_IMPORT(ULONG, SKF_DevAuth, (DEVHANDLE hDev, BYTE *pbAuthData, ULONG ulLen))

TEMBRA_IMPORT(ULONG, SKF_SetSymmKey, (DEVHANDLE hDev, BYTE *pbKey, ULONG ulAlgID, HANDLE *phKey))
TEMBRA_IMPORT(ULONG, SKF_EncryptInit, (HANDLE hKey, BLOCKCIPHERPARAM EncryptParam))
TEMBRA_IMPORT(ULONG, SKF_Encrypt, (HANDLE hKey, BYTE *pbData, ULONG ulDataLen, BYTE *pbEncryptedData, ULONG *pulEncryptedLen))
TEMBRA_IMPORT(ULONG, SKF_DecryptInit, (HANDLE hKey, BLOCKCIPHERPARAM DecryptParam))
TEMBRA_IMPORT(ULONG, SKF_Decrypt, (HANDLE hKey, BYTE *pbEncryptedData, ULONG ulEncryptedLen, BYTE *pbData, ULONG *pulDataLen))

TEMBRA_IMPORT(ULONG, SKF_DigestInit, (DEVHANDLE hDev, ULONG ulAlgID, ECCPUBLICKEYBLOB *pPubKey, BYTE *pbID, ULONG ulIDLen, HANDLE *phHash))
TEMBRA_IMPORT(ULONG, SKF_DigestUpdate, (HANDLE hHash, BYTE *pbData, ULONG ulDataLen))
TEMBRA_IMPORT(ULONG, SKF_DigestFinal, (HANDLE hHash, BYTE *pbHashData, ULONG *pulHashLen))
// Closes key and digest handles.
TEMBRA_IMPORT(ULONG, SKF_CloseHandle, (HANDLE hHandle))

TEMBRA_IMPORT(ULONG, SKF_EnumFiles, (HAPPLICATION hApplication, LPSTR szFileList, ULONG *pulSize))
TEMBRA_IMPORT(ULONG, SKF_CreateFile, (HAPPLICATION hApplication, LPSTR szFileName, ULONG ulFileSize, ULONG ulReadRights, ULONG ulWriteRights))
TEMBRA_IMPORT(ULONG, SKF_DeleteFile, (HAPPLICATION hApplication, LPSTR szFileName))
TEMBRA_IMPORT(ULONG, SKF_GetFileInfo, (HAPPLICATION hApplication, LPSTR szFileName, FILEATTRIBUTE *pFileInfo))
TEMBRA_IMPORT(ULONG, SKF_ReadFile, (HAPPLICATION hApplication, LPSTR szFileName, ULONG ulOffset, ULONG ulSize, BYTE *pbOutData, ULONG *pulOutLen))
TEMBRA_IMPORT(ULONG, SKF_WriteFile, (HAPPLICATION hApplication, LPSTR szFileName, ULONG ulOffset, BYTE *pbData, ULONG ulSize))

// clang-format on
