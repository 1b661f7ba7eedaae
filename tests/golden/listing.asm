PBMAIN:

; 9: FUNCTION PBMAIN () AS LONG
  0001400013D8  55                              push rbp
  0001400013D9  48 8B EC                        mov rbp, rsp
  0001400013DC  B9 40 00 00 00                  mov ecx, 64
  0001400013E1  48 8B C4                        mov rax, rsp
  0001400013E4  48 2B C1                        sub rax, rcx
  0001400013E7  48 3B 83 48 02 00 00            cmp rax, [rbx+584]
  0001400013EE  0F 83 0A 00 00 00               jae L34
  0001400013F4  BF 09 00 00 00                  mov edi, 9
  0001400013F9  E8 BE FE FF FF                  call rt_no_stack
L34:
  0001400013FE  48 8B E0                        mov rsp, rax
  000140001401  C1 E9 02                        shr ecx, 2
  000140001404  48 8D 7D FC                     lea rdi, [rbp-4]
  000140001408  33 C0                           xor eax, eax
  00014000140A  FD                              std
  00014000140B  F3 AB                           rep stosd
  00014000140D  FC                              cld

; 12:     FOR i = 1 TO 3
  00014000140E  B8 03 00 00 00                  mov eax, 3
  000140001413  89 45 E8                        mov [rbp-24], eax
  000140001416  B8 01 00 00 00                  mov eax, 1
  00014000141B  89 45 E0                        mov [rbp-32], eax
  00014000141E  B8 01 00 00 00                  mov eax, 1
  000140001423  89 45 F8                        mov [rbp-8], eax
L35:
  000140001426  8B 45 F8                        mov eax, [rbp-8]
  000140001429  50                              push rax
  00014000142A  8B 45 E8                        mov eax, [rbp-24]
  00014000142D  8B C8                           mov ecx, eax
  00014000142F  58                              pop rax
  000140001430  3B C1                           cmp eax, ecx
  000140001432  0F 9E C0                        setle al
  000140001435  0F B6 C0                        movzx eax, al
  000140001438  F7 D8                           neg eax
  00014000143A  85 C0                           test eax, eax
  00014000143C  0F 84 79 00 00 00               je L36

; 13:         total = total + Square(i)
  000140001442  8B 45 F0                        mov eax, [rbp-16]
  000140001445  50                              push rax
  000140001446  8B 45 F8                        mov eax, [rbp-8]
  000140001449  50                              push rax
  00014000144A  E8 73 02 00 00                  call Square
  00014000144F  48 83 C4 08                     add rsp, 8
  000140001453  8B C8                           mov ecx, eax
  000140001455  58                              pop rax
  000140001456  03 C1                           add eax, ecx
  000140001458  89 45 F0                        mov [rbp-16], eax

; 14:         PRINT "turn "; i; ": "; total
  00014000145B  48 8D B3 B0 12 00 00            lea rsi, [rbx+4784]
  000140001462  B9 05 00 00 00                  mov ecx, 5
  000140001467  E8 9A FC FF FF                  call rt_put_text
  00014000146C  8B 45 F8                        mov eax, [rbp-8]
  00014000146F  E8 E3 FC FF FF                  call rt_print_long
  000140001474  48 8D B3 B8 12 00 00            lea rsi, [rbx+4792]
  00014000147B  B9 02 00 00 00                  mov ecx, 2
  000140001480  E8 81 FC FF FF                  call rt_put_text
  000140001485  8B 45 F0                        mov eax, [rbp-16]
  000140001488  E8 CA FC FF FF                  call rt_print_long
  00014000148D  E8 8F FC FF FF                  call rt_new_line
  000140001492  E8 CC FB FF FF                  call rt_flush

; 15:         SLEEP 10
  000140001497  B8 0A 00 00 00                  mov eax, 10
  00014000149C  E8 08 FF FF FF                  call rt_sleep
