#include "tembrakey/text/chinese.h"

#include "tembrakey/cli/help.h"
#include "tembrakey/commands/pin_texts.h"

namespace tembra::tool {

namespace {

#define PIN_WARNING                                                                                   \
    "提供者的跟踪日志从级别 3（信息，即默认级别）起会以明文记录 PIN：\n" \
    "将 TEMBRA_KEY_PROV_LOG_LEVEL 设为 2 或更小即可避免。"

const Translation HELP_TEXTS[] = {
    // the pages' words
    {"Usage", "用法"},
    {"Positionals", "参数"},
    {"Options", "选项"},
    {"NAME", "名称"},
    {"SYNOPSIS", "用法"},
    {"OPTIONS FOR ALL COMMANDS", "通用选项"},
    {"COMMANDS", "命令"},
    {"Print a script that lets the shell complete commands and options",
     "输出让 shell 补全命令和选项的脚本"},
    {"The shell", "shell 的名称"},
    {"Print the manual page", "输出手册页"},
    {"Subcommands", "子命令"},
    {"OPTIONS", "选项"},
    {"SUBCOMMAND", "子命令"},
    {"Examples:", "示例："},
    {"Show this help and end", "显示此帮助并退出"},
    {"Show the version and end", "显示版本并退出"},
    {TOOL_SUMMARY, "在命令行中通过 TembraKeyProv 提供者使用智能密码钥匙。"},
    {TOOL_FOOTER, "退出码：\n"
                  "   0  成功\n"
                  "   1  令牌、宿主库或设备状态拒绝了请求\n"
                  "   2  用法错误，或文件内容无法使用\n"
                  "   3  没有该设备、密钥或证书，或有多个可选\n"
                  "   4  未登录\n"
                  "   5  PIN 错误或已锁定，或设备认证失败\n"
                  "   6  已存在\n"
                  "   7  数据对象不存在\n"
                  "   8  无法加载库\n"
                  "   9  无法读写文件\n"
                  "  10  令牌不接受此长度的 PIN\n"
                  "  11  签名错误\n"
                  "\n"
                  "环境变量：\n"
                  "  TEMBRA_KEY_PROV            提供者库的路径\n"
                  "  TEMBRA_KEY_PROV_LOG_LEVEL  提供者的跟踪日志：0 关闭，1 错误 …… 5 详尽\n"
                  "  TEMBRA_KEY_PROV_LOG_PATH   日志文件\n"
                  "跟踪日志从级别 3（默认）起以明文记录 PIN。"},
    {TEMBRA_PIN_WARNING, PIN_WARNING},

    // groups and commands
    {"Software tokens of the development kit", "开发套件的软件令牌"},
    {"User and administrator PINs", "用户 PIN 与管理员 PIN"},
    {"Key pairs on the token", "令牌上的密钥对"},
    {"Certificates on the token", "令牌上的证书"},
    {"Data objects on the token", "令牌上的数据对象"},
    {"List devices, key pairs and certificates", "列出设备、密钥对和证书"},
    {"Show which algorithms the token supports (+ yes, - no)", "显示令牌支持的算法（+ 是，- 否）"},
    {"Check that a login works: user, administrator or device authentication",
     "检查能否登录：用户、管理员或设备认证"},
    {"Check a PIN", "验证 PIN"},
    {"Change a PIN", "修改 PIN"},
    {"Unblock the user PIN with the administrator PIN, and set it",
     "用管理员 PIN 解锁用户 PIN 并重新设置"},
    {"Show how many tries each PIN has left", "显示各 PIN 的剩余尝试次数"},
    {"Generate a signature key pair on the token", "在令牌上生成签名密钥对"},
    {"Delete a container with both its key pairs and certificates", "删除容器及其两个密钥对和证书"},
    {"Export a public key as PEM SubjectPublicKeyInfo", "以 PEM SubjectPublicKeyInfo 导出公钥"},
    {"Bring an encryption key pair to the token", "把加密密钥对导入令牌"},
    {"Envelope a key pair for a container, as a key management centre does",
     "像密钥管理中心那样为某个容器封装密钥对"},
    {"Store a certificate with a key pair, in place of an earlier one",
     "为密钥对写入证书，替换原有证书"},
    {"Read a certificate from the token", "从令牌读取证书"},
    {"Sign a file with a key on the token", "用令牌上的密钥对文件签名"},
    {"Check the signature of a file", "验证文件的签名"},
    {"Encrypt a file on the token with a raw key", "用明文密钥在令牌上加密文件"},
    {"Decrypt a file on the token, with a raw key or with a private key",
     "在令牌上用明文密钥或私钥解密文件"},
    {"Compute a file's SM3 digest on the token", "在令牌上计算文件的 SM3 摘要"},
    {"Draw random bytes from the token", "从令牌获取随机数"},
    {"Create a data object of a fixed size", "创建固定大小的数据对象"},
    {"Read a data object", "读取数据对象"},
    {"Write into a data object", "写入数据对象"},
    {"Delete a data object", "删除数据对象"},
    {"Make a software token", "创建软件令牌"},
    {"List the software tokens", "列出软件令牌"},
    {"Remove a software token for good", "永久删除软件令牌"},

    // arguments
    {"Print results and errors as JSON", "以 JSON 输出结果和错误"},
    {"The provider's library (else TEMBRA_KEY_PROV, else beside this program)",
     "提供者的库（否则取 TEMBRA_KEY_PROV，再否则取本程序旁边的库）"},
    {"The device, as list shows it", "设备，见 list 的输出"},
    {"Write DER instead of PEM (with --out)", "输出 DER 而不是 PEM（配合 --out）"},
    {"Where the certificate goes (else standard output)", "证书写到哪里（默认标准输出）"},
    {"An X.509 certificate, PEM or DER", "X.509 证书，PEM 或 DER"},
    {"Cipher and mode (sm4-cbc)", "算法与模式（sm4-cbc）"},
    {"A file with the key: 16 bytes, or 32 hex digits",
     "存放密钥的文件：16 字节，或 32 位十六进制"},
    {"The key in 32 hex digits; other users of the machine can see it",
     "密钥，32 位十六进制；本机其他用户能看到它"},
    {"CBC: the initialisation vector in 32 hex digits", "CBC：初始向量，32 位十六进制"},
    {"PKCS #7 padding; without it lengths are multiples of 16",
     "PKCS #7 填充；不用它时长度须为 16 的倍数"},
    {"The object's number", "数据对象的编号"},
    {"Its size in bytes, which stays", "字节数，创建后不变"},
    {"Rights of anyone (none)", "任何人的权限（none）"},
    {"Rights after user login (rw)", "用户登录后的权限（rw）"},
    {"Where to begin (0)", "起始位置（0）"},
    {"How many bytes (else to the end)", "字节数（默认到末尾）"},
    {"Where the bytes go (else standard output)", "写到哪里（默认标准输出）"},
    {"What to write (- is standard input)", "要写入的文件（- 为标准输入）"},
    {"The file to decrypt (- is standard input)", "要解密的文件（- 为标准输入）"},
    {"Where the plaintext goes (else standard output)", "明文写到哪里（默认标准输出）"},
    {"The file to encrypt (- is standard input)", "要加密的文件（- 为标准输入）"},
    {"Where the ciphertext goes (else standard output)", "密文写到哪里（默认标准输出）"},
    {"The file to hash (- is standard input)", "要计算摘要的文件（- 为标准输入）"},
    {"The label of the container to delete", "要删除的容器的标签"},
    {"Do not ask", "不询问"},
    {"The private key to envelope, unencrypted PEM", "要封装的私钥，未加密的 PEM"},
    {"The container's public signature key, PEM or DER", "容器的签名公钥，PEM 或 DER"},
    {"Where the blob goes", "封装结果写到哪里"},
    {"SM2: the 48-byte form of the private key instead of 32 bytes",
     "SM2：私钥用 48 字节形式而不是 32 字节"},
    {"Where the PEM goes (else standard output)", "PEM 写到哪里（默认标准输出）"},
    {"Algorithm (sm2)", "算法（sm2）"},
    {"Key size: 256 for SM2, 1024 or 2048 for RSA (2048)",
     "密钥位数：SM2 为 256，RSA 为 1024 或 2048（2048）"},
    {"The label, the name of a new container", "标签，即新容器的名称"},
    {"An enveloped key pair blob, or an unencrypted PEM private key",
     "封装的密钥对，或未加密的 PEM 私钥"},
    {"The container with the signature key pair", "已有签名密钥对的容器"},
    {"As administrator", "以管理员身份"},
    {"With the device-authentication key, 32 characters", "用设备认证密钥，32 个字符"},
    {"The administrator PIN instead of the user PIN", "管理员 PIN 而不是用户 PIN"},
    {"How many bytes", "字节数"},
    {"Where they go as bytes (else printed in hex)", "写到哪里（默认以十六进制显示）"},
    {"The file to sign (- is standard input)", "要签名的文件（- 为标准输入）"},
    {"SM2: the signer's identity (1234567812345678 unless agreed otherwise)",
     "SM2：签名者标识（无另行约定时为 1234567812345678）"},
    {"Where the signature goes as bytes (else it is printed in hex)",
     "签名写到哪里（默认以十六进制显示）"},
    {"The signed file (- is standard input)", "已签名的文件（- 为标准输入）"},
    {"The signature, as sign writes or prints it", "签名，即 sign 写出或显示的内容"},
    {"The label of the signer's key on the token", "签名者密钥在令牌上的标签"},
    {"The signer's public key, PEM or DER", "签名者的公钥，PEM 或 DER"},
    {"The signer's X.509 certificate, PEM or DER", "签名者的 X.509 证书，PEM 或 DER"},
    {"{1} from an environment variable", "{1}，取自环境变量"},
    {"{1} from a line of an open file descriptor", "{1}，取自已打开的文件描述符的一行"},
    {"PIN or key", "PIN 或密钥"},
    {"User PIN", "用户 PIN"},
    {"Administrator PIN", "管理员 PIN"},
    {"Present PIN", "当前 PIN"},
    {"New PIN", "新 PIN"},
    {"New user PIN", "新的用户 PIN"},
    {"Device-authentication key (32 digits)", "设备认证密钥（32 位数字）"},
    {"The key's label, the name of its container (else the only key there is)",
     "密钥的标签，即容器名称（默认取唯一的密钥）"},
    {"Which pair of the container", "容器中的哪个密钥对"},
    {"The token's label, up to 32 bytes", "令牌的标签，最多 32 字节"},
    {"Its serial number (else a random one)", "序列号（默认随机）"},
    {"The application's name (TEMBRA)", "应用的名称（TEMBRA）"},
    {"Without application, as it leaves the factory", "不建应用，如出厂状态"},
    {"Bytes the token holds (262144)", "令牌的容量，字节（262144）"},
    {"Wrong PINs in a row until a PIN locks (10)", "连续输错多少次后 PIN 锁定（10）"},
    {"The token's serial number", "令牌的序列号"},

    // explanations
    {"SM3 and SM4 also need the provider's settings HasSM3 and HasSM4.",
     "SM3 与 SM4 还取决于提供者的设置 HasSM3 与 HasSM4。"},
    {"A login ends with the process: commands that need one take the PIN options themselves.\n" //
     TEMBRA_PIN_WARNING,
     "登录随进程结束而失效：需要登录的命令自带 PIN 选项。\n" PIN_WARNING},
    {"SM2 keys sign the SM3 digest of Z and the file; the signature is DER. RSA keys sign the "
     "file's\n"
     "SHA-256 digest with PKCS #1 v1.5 padding.",
     "SM2 密钥对 Z 与文件的 SM3 摘要签名，签名为 DER；RSA 密钥对文件的 SHA-256 摘要\n"
     "以 PKCS #1 v1.5 填充签名。"},
    {"The exit code is 0 when the signature is right and 11 when it is wrong. No PIN is needed,\n"
     "and with --key or --cert neither token nor provider. Of a certificate only the key is used:\n"
     "who issued it, and until when it holds, is for you to check.",
     "签名正确时退出码为 0，错误时为 11。不需要 PIN；用 --key 或 --cert 时也不需要令牌和\n"
     "提供者。证书只取其中的公钥：签发者与有效期须自行核对。"},
    {"With --key-file or --key-hex the cipher is symmetric; else the private key of --label is "
     "used\n"
     "(SM2 ciphertext in DER as GM/T 0009 has it, or flat: 04 x y C2 C3; RSA PKCS #1 v1.5).",
     "给出 --key-file 或 --key-hex 时用对称算法，否则用 --label 的私钥（SM2 密文可为\n"
     "GM/T 0009 的 DER，或平铺形式 04 x y C2 C3；RSA 为 PKCS #1 v1.5）。"},
    {"Encryption key pairs are brought by key import into a container with a signature key pair.",
     "加密密钥对由 key import 导入已有签名密钥对的容器。"},
    {"The container must hold a signature key pair of the same algorithm. A PEM key (PKCS #8, "
     "PKCS\n"
     "#1 or SEC 1) is enveloped by the provider; an enveloped blob comes from a key management\n"
     "centre or from key envelope.",
     "容器中须有同一算法的签名密钥对。PEM 私钥（PKCS #8、PKCS #1 或 SEC 1）由提供者封装；\n"
     "封装好的密钥对来自密钥管理中心或 key envelope。"},
    {"Needs no token: only the container's public key, as key export writes it. The private key "
     "is\n"
     "encrypted with SMS4, the symmetric key to the container's key.",
     "不需要令牌，只需要 key export 写出的容器公钥。私钥用 SMS4 加密，对称密钥用容器\n"
     "的公钥加密。"},
    {"For development only: the keys of a software token stand in a file in clear.\n"
     "Tokens lie in TEMBRA_SOFT_TOKEN_DIR, or in the user's data folder.",
     "仅供开发：软件令牌的密钥以明文存放在文件中。\n"
     "令牌位于 TEMBRA_SOFT_TOKEN_DIR，或用户的数据目录。"},
};

} // namespace

std::span<const Translation> chineseHelp() {
    return HELP_TEXTS;
}

} // namespace tembra::tool
