#include <algorithm>
#include <ctime>
#include <cstdio>
#include <cstdlib>

#include "core/resampling_core.h"
#include "core_scene.h"
int main(int argc,char**argv){
  int size=argc>1?atoi(argv[1]):1024;
  using enum PIXEL_TYPE; using M=CORE_CASE::MAPPING;
  CORE_CASE cases[]={{"code 8, L 6, N 64",C_INT_16,6,64},{"code 8, L 8, N 64"},{"code 8, L 8, N 64, rate, mask",C_INT_16,8,64,true,true},{"L16",C_INT_16,16},{"N1024",C_INT_16,8,1024},{"steep",C_INT_16,8,64,false,false,M::STEEP},{"code 9",C_FLT_2},{"irr",C_INT_16,8,64,false,false,M::IRREGULAR}};
  for(auto&c:cases){ CORE_SCENE s(c,size);
   double best=1e9; for(int r=0;r<3;++r){timespec a;clock_gettime(CLOCK_THREAD_CPUTIME_ID,&a);
    if(c.pixel_type==C_INT_16) ResampleBlock<INT_16_CODEC>(s.Argument(),s.Argument().job.input_slave->Rows<INT_16_CODEC::PIXEL>(),s.Argument().job.output_slave->Rows<INT_16_CODEC::PIXEL>());
    else ResampleBlock<BINARY_16_CODEC>(s.Argument(),s.Argument().job.input_slave->Rows<BINARY_16_CODEC::PIXEL>(),s.Argument().job.output_slave->Rows<BINARY_16_CODEC::PIXEL>());
    timespec b;clock_gettime(CLOCK_THREAD_CPUTIME_ID,&b); best=std::min(best,((b.tv_sec-a.tv_sec)*1e9+(b.tv_nsec-a.tv_nsec))/size/size);}
   printf("%-32s plain %.1f ns\n",c.name,best);
  }
}
